/// \file temporary_folder.h
/// Folders that go away with the test, and whole files as strings.

#pragma once

#include <sched.h>
#include <sys/mount.h>
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

/// @return the path
inline std::string Write(const std::string& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

/// Bytes that this process has asked the system to read so far; negative where it does not tell.
inline long long BytesRead() {
    std::ifstream io("/proc/self/io");
    std::string name;
    long long value = -1;
    io >> name >> value;
    return name == "rchar:" ? value : -1;
}

/// In memory where the machine has room for it: what is flushed to disk costs nothing there.
class TEMPORARY_FOLDER {
  public:
    explicit TEMPORARY_FOLDER(bool on_disk = false) {
        const bool in_memory = !on_disk && access("/dev/shm", W_OK) == 0;
        std::string name =
            (in_memory ? "/dev/shm" : std::filesystem::temp_directory_path().string()) + "/velmora_test_XXXXXX";
        if (mkdtemp(name.data()) == nullptr) throw "no temporary folder";
        path_ = name;
    }
    ~TEMPORARY_FOLDER() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TEMPORARY_FOLDER(const TEMPORARY_FOLDER&) = delete;
    TEMPORARY_FOLDER& operator=(const TEMPORARY_FOLDER&) = delete;

    [[nodiscard]] std::string Path(const std::string& name = "test.pool") const { return (path_ / name).string(); }
    /// Writes a file. @return its path
    std::string Make(const std::string& content, const std::string& name = "test.pool") const {
        return Write(Path(name), content);
    }

  private:
    std::filesystem::path path_;
};

/// A temporary folder that is the working folder while it exists.
class WORKING_FOLDER : public TEMPORARY_FOLDER {
  public:
    WORKING_FOLDER() : before_(std::filesystem::current_path()) { std::filesystem::current_path(Path("")); }
    ~WORKING_FOLDER() { std::filesystem::current_path(before_); }

  private:
    std::filesystem::path before_;
};

/// Mounts a small disk on the folder, seen by this process only: it goes away with it, however it ends.
/// @return false where this is not permitted
inline bool MountSmallDisk(const std::string& folder, const char* size) {
    return unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("none", folder.c_str(), "tmpfs", 0, size) == 0;
}
