/// \file temporary_folder.h
/// A working folder of a test's own.

#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

inline std::string Content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void Write(const std::string& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

class TEMPORARY_FOLDER {
  public:
    TEMPORARY_FOLDER() : before_(std::filesystem::current_path()) {
        char name[] = "/tmp/controller_test.XXXXXX";
        folder_ = mkdtemp(name);
        std::filesystem::current_path(folder_);
    }
    ~TEMPORARY_FOLDER() {
        std::filesystem::current_path(before_);
        std::filesystem::remove_all(folder_);
    }
    TEMPORARY_FOLDER(const TEMPORARY_FOLDER&) = delete;
    TEMPORARY_FOLDER& operator=(const TEMPORARY_FOLDER&) = delete;

  private:
    std::filesystem::path before_;
    std::filesystem::path folder_;
};
