/// \file image_files.h
/// Help for tests on image files: a folder of their own, whole files as strings, bytes written in hexadecimal, the log.

#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/// A new folder, removed with all that is in it at the end.
class SCRATCH_FOLDER {
  public:
    SCRATCH_FOLDER() {
        std::string name = testing::TempDir() + "image_XXXXXX";
        if (mkdtemp(name.data()) == nullptr) throw "no scratch folder";
        path_ = name;
    }
    SCRATCH_FOLDER(const SCRATCH_FOLDER&) = delete;
    SCRATCH_FOLDER& operator=(const SCRATCH_FOLDER&) = delete;
    ~SCRATCH_FOLDER() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    std::string Path(const std::string& name) const { return (path_ / name).string(); }

  private:
    std::filesystem::path path_;
};

inline std::string FileBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void WriteFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

/// "59a6 6a95" is four bytes; blanks do not count.
inline std::string Bytes(const std::string& hexadecimal) {
    std::string digits;
    for (const char c : hexadecimal) {
        if (c != ' ' && c != '\n') digits += c;
    }
    std::string bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
        bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
    }
    return bytes;
}

/// What the action logs on the screen.
template <class ACTION>
std::string LogOf(const ACTION& action) {
    testing::internal::CaptureStdout();
    action();
    return testing::internal::GetCapturedStdout();
}
