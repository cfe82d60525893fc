/// \file parameter_pool.h
/// A parameter pool: a typed, line-oriented text file of named values (its syntax: docs/pools.md).
/// A caller asks for a key with the C++ type that it expects (pool_type.h); the pool finds the key's line, checks the
/// type tag and parses the value with its type's range. The first of several entries of a key counts.
/// Errors: the details are logged, then a class of pool_errors.h is thrown. A failed read leaves the pool usable and
/// the caller's value unchanged. Threads: none; one thread per object.

#pragma once

#include <sys/stat.h>

#include <cstdio>
#include <memory>
#include <string>
#include <unordered_map>

#include "lib/baselib/logging/logging.h"
#include "lib/baselib/pool/pool_block.h"

class PARAMETER_POOL {
  public:
    /// A pool without a file; its name is "xxx.dat".
    PARAMETER_POOL();
    /// @throws as Open
    explicit PARAMETER_POOL(const std::string& path);
    virtual ~PARAMETER_POOL();
    PARAMETER_POOL(const PARAMETER_POOL&) = delete;
    PARAMETER_POOL& operator=(const PARAMETER_POOL&) = delete;

    /// Opens for reading and writing, else creates an empty file of this name, else opens for reading only. An existing
    /// file is never truncated. Left-overs of interrupted updates in the folder are named at WARNING.
    /// @throws CAN_NOT_OPEN_POOL
    void Open(const std::string& path);

    /// Whether the pool has an entry of this key; logs nothing about it. @throws ERROR_ALGORITHM without an open file
    [[nodiscard]] bool FindKey(const std::string& key);

    /// @throws PARAMETER_KEY_NOT_FOUND, WRONG_PARAMETER_TYPE, INVALID_PARAMETER_VALUE, PARAMETER_OUT_OF_BOUNDS,
    ///         ERROR_NO_MEMORY, ERROR_CAN_NOT_READ_FILE; ERROR_ALGORITHM without an open file
    template <class T>
    void Get(const std::string& key, T& value) {
        static_assert(kPoolType<T> != 0, "no type of pool values");
        POOL_ENTRY entry = ReadHeader(key, kPoolType<T>);
        T result{};
        ReadPoolValue(entry, result);
        value = std::move(result);
    }
    template <class T>
    [[nodiscard]] T Get(const std::string& key) {
        T value{};
        Get(key, value);
        return value;
    }

    [[nodiscard]] std::string FileName() const { return file_name_; }
    /// The level at which a missing key is logged; ALARM at first.
    void SetNotFoundLevel(LOGGING_LEVEL level) { not_found_level_ = level; }

  protected:
    [[nodiscard]] const std::string& Directory() const { return directory_; }
    [[nodiscard]] bool IsWritable() const { return writable_; }
    /// Opens the file again when its name now belongs to another file: an editor replaced it while the pool was open.
    void ReopenIfReplaced();
    void ForbidUpdates() { writable_ = false; }
    /// @throws ERROR_ALGORITHM without an open file
    [[nodiscard]] FILE* Stream() const;
    /// Tells every pool object of this process that a file has changed; its time alone is too coarse to show it.
    static void CountUpdate();

  private:
    struct PLACE {
        long long offset;
        long long line_number;
    };
    /// Where the first entry of each key stands, and the state of the file that this is true for.
    struct INDEX_OF_KEYS {
        timespec changed{};
        long long bytes = -1;
        unsigned long updates = 0;
        std::unordered_map<std::string, PLACE> places;
    };

    /// Puts the reader at the entry's line. @return false when there is none
    bool Locate(const std::string& key);
    void RefreshIndex();
    /// Finds the key, checks the type and that there is a value; the cursor is then at the value.
    POOL_ENTRY ReadHeader(const std::string& key, int expected_type);

    std::string file_name_ = "xxx.dat";
    std::string directory_ = ".";
    LINE_READER reader_;
    INDEX_OF_KEYS index_;
    bool writable_ = true;
    LOGGING_LEVEL not_found_level_ = LOGGING_LEVEL::ALARM;
    FILE* stream_ = nullptr;
};
