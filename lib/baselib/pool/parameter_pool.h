/// \file parameter_pool.h
/// A parameter pool: a typed, line-oriented text file of named values (its syntax: docs/pools.md).
/// A caller asks for a key with the C++ type that it expects (pool_type.h); the pool finds the key's line, checks the
/// type tag and parses the value with its type's range. The first of several entries of a key counts.
/// The file is read whole, under its lock, when it is opened; what is looked up later is of this one state. Only an
/// update by this process is seen later.
/// Errors: the details are logged, then a class of pool_errors.h is thrown. A failed read leaves the pool usable and
/// the caller's value unchanged. Threads: none; one thread per object.

#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "lib/baselib/logging/logging.h"
#include "lib/baselib/pool/pool_block.h"
#include "lib/baselib/pool/pool_file.h"

class PARAMETER_POOL {
  public:
    /// A pool without a file; its name is "xxx.dat".
    PARAMETER_POOL();
    /// @throws as Open
    explicit PARAMETER_POOL(const std::string& path);
    virtual ~PARAMETER_POOL() = default;
    PARAMETER_POOL(const PARAMETER_POOL&) = delete;
    PARAMETER_POOL& operator=(const PARAMETER_POOL&) = delete;

    /// Opens for reading and writing, else creates an empty file of this name, else opens for reading only. An existing
    /// file is never truncated. Left-overs of interrupted updates in the folder are named at WARNING.
    /// @throws CAN_NOT_OPEN_POOL, ERROR_CAN_NOT_READ_FILE; ERROR_PARAMETER_POOL for a pool that stays locked;
    ///         CORRUPTED_PARAMETER_POOL for a pool that an interrupted update cut off
    void Open(const std::string& path);

    /// Whether the pool has an entry of this key; logs nothing about it. @throws ERROR_ALGORITHM without an open file
    [[nodiscard]] bool FindKey(const std::string& key);

    /// All keys, in no order. @throws ERROR_ALGORITHM without an open file
    [[nodiscard]] std::vector<std::string> Keys();

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

    [[nodiscard]] std::string FileName() const { return file_.Name(); }
    /// The level at which a missing key is logged; ALARM at first.
    void SetNotFoundLevel(LOGGING_LEVEL level) { not_found_level_ = level; }

  protected:
    /// @throws ERROR_ALGORITHM without an open file
    [[nodiscard]] POOL_FILE& File();
    /// The content, read again when a pool of this process was updated since.
    [[nodiscard]] const std::string& Text();
    /// From here to ReleaseLock() reading takes no lock of its own. The next lookup reads the file again.
    void HoldLock();
    void ReleaseLock();
    /// Tells every pool object of this process that a file has changed.
    static void CountUpdate();

  private:
    struct PLACE {
        std::size_t offset;
        long long line_number;
    };
    /// The file's content and where the first entry of each key stands in it.
    struct STATE_OF_FILE {
        unsigned long updates = 0;
        std::string text;
        std::unordered_map<std::string, PLACE> places;
    };

    [[nodiscard]] const STATE_OF_FILE& State();
    [[nodiscard]] STATE_OF_FILE ReadState();
    /// Finds the key, checks the type and that there is a value; the cursor is then at the value.
    POOL_ENTRY ReadHeader(const std::string& key, int expected_type);

    POOL_FILE file_;
    STATE_OF_FILE state_;
    LINE_READER reader_;
    bool holds_lock_ = false;
    LOGGING_LEVEL not_found_level_ = LOGGING_LEVEL::ALARM;
};
