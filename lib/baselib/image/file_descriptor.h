/// \file file_descriptor.h
/// An open file that is closed when it goes out of scope, and whole reads and writes on it.

#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>

#include "lib/baselib/logging/unless_interrupted.h"

class FILE_DESCRIPTOR {
  public:
    /// @param number  -1: none
    explicit FILE_DESCRIPTOR(int number) : number_(number) {}
    FILE_DESCRIPTOR(const FILE_DESCRIPTOR&) = delete;
    FILE_DESCRIPTOR& operator=(const FILE_DESCRIPTOR&) = delete;
    ~FILE_DESCRIPTOR();

    int Get() const { return number_; }
    /// Closes what is held and holds another file.
    void Reset(int number);
    /// Hands the file over to the caller, who closes it.
    int Release();
    /// Closes the file now. @return 0 or the errno value: some file systems tell of a failed write only here.
    int Close();

  private:
    int number_;
};

/// open(), over interruptions.
int OpenFile(const std::string& path, int flags, mode_t permissions = 0);

/// Reads up to that many bytes from the current position, over short reads and interruptions.
/// @return number of bytes read; fewer at the end of the file or on an error
std::size_t ReadWhole(int file_descriptor, void* buffer, std::size_t bytes);

/// Writes that many bytes at the current position, over short writes and interruptions.
/// @return 0 when all are written, else the errno value
int WriteWhole(int file_descriptor, const void* data, std::size_t bytes);

/// The same at an offset of a regular file, whose position does not change: several threads may write at once.
int WriteWholeAt(int file_descriptor, const void* data, std::size_t bytes, off_t offset);

/// The same for rows that lie apart in memory and follow each other in the file.
/// @param stride  from row to row in memory, in bytes
int WriteRowsWholeAt(int file_descriptor, const void* data, std::size_t row_bytes, std::size_t stride, long long rows,
                     off_t offset);
