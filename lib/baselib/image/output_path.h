/// \file output_path.h
/// Where the file behind an output path lies, or will lie: links are followed, also those that point to nothing yet.

#pragma once

#include <string>

/// The path's folder and its last name, for example "out/" and "phase.ras".
struct FOLDER_AND_NAME {
    explicit FOLDER_AND_NAME(const std::string& path);
    /// Of another name in this folder.
    [[nodiscard]] std::string PathOf(const std::string& other_name) const { return folder + other_name; }
    /// For the system's calls, which know no empty path.
    [[nodiscard]] const char* FolderPath() const { return folder.empty() ? "." : folder.c_str(); }

    std::string folder;  ///< ends with a slash; empty for the current folder
    std::string name;
};

/// The path that is left when all links at its end are followed; the file there need not exist. The path of a device or
/// a pipe is left as it is.
/// @return empty, with errno set, when the links go in a circle or can not be read
std::string BehindLinks(const std::string& path);
