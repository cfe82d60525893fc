/// \file mapped_file.h
/// Which files are mapped where: a bus error tells an address, the user needs the file.
/// Threads, signals: BusErrorText() is async-signal-safe; a mapping is recorded and forgotten by one thread.

#pragma once

#include <cstddef>
#include <string>

/// Keeps a mapping in the table of mappings as long as it lives.
class MAPPED_FILE {
  public:
    MAPPED_FILE(const std::string& path, const void* start, std::size_t bytes);
    MAPPED_FILE(const MAPPED_FILE&) = delete;
    MAPPED_FILE& operator=(const MAPPED_FILE&) = delete;
    ~MAPPED_FILE();

    [[nodiscard]] const std::string& Path() const { return path_; }
    [[nodiscard]] bool Holds(const void* address) const noexcept;
    [[nodiscard]] const char* Text() const noexcept { return text_.c_str(); }

  private:
    std::string path_;
    std::string text_;
    const std::byte* start_;
    std::size_t bytes_;
};

/// A line that names the file mapped at an address and what a bus error there means; null when there is none.
const char* BusErrorText(const void* address) noexcept;
