/// \file record_file.h
/// A text file read line by line from any position, and extended at its end.
/// Reads go through a buffer of 4 KiB, so that a search touches only the pages around the records it looks at.
/// Threads: one object per thread.

#pragma once

#include <string>

/// What tells whether a file has been changed or replaced.
struct FILE_STATE {
    bool exists = false;
    unsigned long long device = 0;
    unsigned long long inode = 0;
    long long size_byte = 0;
    long long modification_s = 0;
    long long modification_ns = 0;

    friend bool operator==(const FILE_STATE&, const FILE_STATE&) = default;
};

FILE_STATE FileStateOf(const std::string& path);

class RECORD_FILE {
  public:
    static constexpr int kMaxLineLength = 4096;

    RECORD_FILE() = default;
    RECORD_FILE(const RECORD_FILE&) = delete;
    RECORD_FILE& operator=(const RECORD_FILE&) = delete;
    ~RECORD_FILE() { Close(); }

    /// To be called while no file is open.
    /// @param create_and_write  also makes the file when it is missing and allows Append
    /// @return false, with errno, when it can not be opened or is no regular file
    [[nodiscard]] bool Open(const std::string& path, bool create_and_write);
    void Close();
    bool IsOpen() const { return descriptor_ >= 0; }

    /// Bytes now in the file.
    long long Size() const;
    /// Offset of the next byte to read.
    long long Position() const { return position_; }
    void Seek(long long position) { position_ = position; }

    /// The next line, without its end ("\n" or "\r\n"); a last line may lack it.
    /// @return false at the end of the file
    /// @throws const char* "MDB: can not read from mdb-file", "MDB: line too long in mdb-file"
    [[nodiscard]] bool ReadLine(std::string& line);
    /// Whether the line last read had its end; without one, its last characters may be missing.
    bool LineEnded() const { return line_ended_; }
    /// Seeks the first line that begins at or behind the position.
    /// @throws as ReadLine
    void SeekLineStart(long long position);

    /// Writes at the end. When that fails half-way, the file is cut back to its old size.
    [[nodiscard]] bool Append(const std::string& text);

  private:
    bool FillBuffer();

    int descriptor_ = -1;
    bool line_ended_ = false;
    long long position_ = 0;
    long long buffer_start_ = 0;
    long long buffer_size_ = 0;
    char buffer_[4096];
};
