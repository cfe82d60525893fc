/// \file parameter_pool_list.h
/// Entries that wait to be written into a pool, at most one per key, in the order in which they were given.

#pragma once

#include <list>
#include <optional>
#include <string>
#include <vector>

#include "lib/baselib/pool/pool_type.h"

template <class T>
using LIST = std::list<T>;

struct PARAMETER_POOL_ITEM {
    std::string key;
    POOL_TYPE type;
    std::string value;                  ///< as it stands in the file behind the tag, braces included
    std::vector<std::string> comments;  ///< lines above the entry, without "#"

    /// The comment lines as they stand in the file.
    [[nodiscard]] std::string CommentText() const;
    /// The entry as it stands in the file, with the empty line that follows it.
    [[nodiscard]] std::string EntryText() const { return key + ' ' + type.Text() + ' ' + value + "\n\n"; }
    /// Whether the file format can hold this; says why not.
    /// @throws PARAMETER_KEY_TOO_LONG; ERROR_ARGUMENT for another key or comment that would not read back;
    ///         INVALID_PARAMETER_VALUE for a line of more than 1024 characters
    void Check() const;
};

class PARAMETER_POOL_LIST {
  public:
    /// Replaces a waiting item of the same key.
    void Put(PARAMETER_POOL_ITEM item);
    /// Removes the item of this key and hands it over.
    std::optional<PARAMETER_POOL_ITEM> Take(std::string_view key);

    [[nodiscard]] bool IsEmpty() const { return items_.empty(); }
    [[nodiscard]] auto begin() const { return items_.begin(); }
    [[nodiscard]] auto end() const { return items_.end(); }
    void Clear() { items_.clear(); }

  private:
    LIST<PARAMETER_POOL_ITEM> items_;
};
