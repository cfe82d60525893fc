/// \file parameter_pool_read_write_change.h
/// A pool whose entries can be changed: Change() collects, Update() writes all collected entries into the file at once.
/// The destructor writes nothing: who wants the changes calls Update() and hears of its failure.

#pragma once

#include <string>
#include <utility>
#include <vector>

#include "lib/baselib/pool/parameter_pool.h"
#include "lib/baselib/pool/parameter_pool_list.h"

class PARAMETER_POOL_READ_WRITE_CHANGE : public PARAMETER_POOL {
  public:
    /// A pool without a file; Open() follows.
    PARAMETER_POOL_READ_WRITE_CHANGE() = default;
    /// @throws as Open
    explicit PARAMETER_POOL_READ_WRITE_CHANGE(const std::string& path) { Open(path); }

    /// @throws as PARAMETER_POOL; CAN_NOT_OPEN_POOL also for a file that can only be read, or whose folder takes no
    ///         new file: an update could not be made safely
    void Open(const std::string& path);

    /// Notes the entry's new value; reading sees it after Update().
    /// @param comments lines to stand above the entry
    /// @throws INVALID_PARAMETER_VALUE, PARAMETER_KEY_TOO_LONG or ERROR_ARGUMENT for what the format cannot hold
    template <class T>
    void Change(const std::string& key, const T& value, std::vector<std::string> comments = {}) {
        static_assert(kPoolType<T> != 0, "no type of pool values");
        try {
            PARAMETER_POOL_ITEM item{key, POOL_TYPE(kPoolType<T>), PoolValueText(value), std::move(comments)};
            item.Check();
            pending_.Put(std::move(item));
        } catch (const ERROR_EXCEPTION&) {
            LogRefusal(key);
            throw;
        }
    }

    /// Writes the collected entries, in a POOL_TRANSACTION of this pool alone.
    void Update();

  private:
    friend class POOL_TRANSACTION;

    /// Opens the file again when its name now belongs to another one. @throws NO_UPDATE_PERMISSION_FOR_POOL
    void RequirePermission();
    void LogRefusal(const std::string& key) const;

    PARAMETER_POOL_LIST pending_;
};
