/// \file file_descriptor.h
/// An open file that is closed when it goes out of scope, and whole reads and writes on it.

#pragma once

#include <cstddef>

class FILE_DESCRIPTOR {
  public:
    explicit FILE_DESCRIPTOR(int number) : number_(number) {}
    FILE_DESCRIPTOR(const FILE_DESCRIPTOR&) = delete;
    FILE_DESCRIPTOR& operator=(const FILE_DESCRIPTOR&) = delete;
    ~FILE_DESCRIPTOR();

    int Get() const { return number_; }
    /// Hands the file over to the caller, who closes it.
    int Release();
    /// Closes the file now. @return 0 or the errno value: some file systems tell of a failed write only here.
    int Close();

  private:
    int number_;
};

/// Reads up to that many bytes from the current position, over short reads and interruptions.
/// @return number of bytes read; fewer at the end of the file or on an error
std::size_t ReadWhole(int file_descriptor, void* buffer, std::size_t bytes);

/// Writes that many bytes at the current position, over short writes and interruptions.
/// @return 0 when all are written, else the errno value
int WriteWhole(int file_descriptor, const void* data, std::size_t bytes);
