/// \file pool_files.h
/// Pools in a folder that goes away with the test, and the log lines that a call leaves.

#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "lib/baselib/pool/pool_errors.h"

class POOL_FOLDER {
  public:
    POOL_FOLDER() {
        // An update flushes to disk; on a memory file system that costs nothing.
        const bool has_memory = access("/dev/shm", W_OK) == 0;
        std::string name = has_memory ? "/dev/shm/pool_test_XXXXXX" : testing::TempDir() + "pool_test_XXXXXX";
        path_ = mkdtemp(name.data());
    }
    ~POOL_FOLDER() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    POOL_FOLDER(const POOL_FOLDER&) = delete;
    POOL_FOLDER& operator=(const POOL_FOLDER&) = delete;

    std::string Path(const std::string& name = "test.pool") const { return (path_ / name).string(); }
    std::string Make(const std::string& content, const std::string& name = "test.pool") const {
        std::ofstream(Path(name), std::ios::binary) << content;
        return Path(name);
    }
    static std::string Content(const std::string& path) {
        std::ostringstream content;
        content << std::ifstream(path, std::ios::binary).rdbuf();
        return content.str();
    }

  private:
    std::filesystem::path path_;
};

/// What the call logs; its failure, as text, is put in front: "pool error - key not found\n...".
template <class CALL>
std::string LogOf(CALL call) {
    testing::internal::CaptureStdout();
    std::string failure;
    try {
        call();
    } catch (const ERROR_EXCEPTION& error) {
        failure = error.Message() + "\n";
    }
    std::fflush(stdout);
    return failure + testing::internal::GetCapturedStdout();
}
