/// \file mdb_record.h
/// A record: its items, in the order of the record type, of which the first is the key item that orders the file. A
/// record type is a record whose values do not matter. Record type definition ("format.dat"): one item per line, name
/// ":" type word; blanks and tabs around the name and anywhere in the type word do not count, empty lines neither.
///     time : utc
///     x : double

#pragma once

#include <string>

#include "lib/baselib/containers/array.h"
#include "lib/baselib/mdb/record_item.h"

class MDB_RECORD {
  public:
    static constexpr int kMaxItemCount = 1000;

    MDB_RECORD() = default;
    /// @throws const char* "MDB: invalid key name in record type definition" (empty, with a colon, or with blanks, tabs
    /// or line ends at either end or inside), "MDB: key name appears twice in record type definition",
    /// "MDB: too many items in record type definition"; ERROR_NO_MEMORY
    explicit MDB_RECORD(const ARRAY<RECORD_ITEM>& items);

    /// No items at all.
    bool IsEmpty() const { return items_.Count() == 0; }
    int Count() const { return items_.Count(); }
    /// From 0.
    const RECORD_ITEM& Item(int index) const { return items_[index]; }
    RECORD_ITEM& Item(int index) { return items_[index]; }
    /// The first item; the record must not be empty.
    const RECORD_ITEM& KeyItem() const { return items_[0]; }

    /// @throws const char* "MDB: RECORD_ITEM: can not find key_name in record"
    const RECORD_ITEM& operator[](const std::string& key_name) const;
    RECORD_ITEM& operator[](const std::string& key_name);

    bool SameType(const MDB_RECORD& other) const;

    /// The lines of "format.dat".
    std::string DefinitionText() const;
    /// The key item's line, then one line per item.
    std::string DataText() const;

  private:
    ARRAY<RECORD_ITEM> items_;
};

/// Splits "name : value" at the first colon and takes the blanks off both sides of the name.
/// @return false when there is no colon
bool SplitNameAndValue(const std::string& line, std::string& name, std::string& value);

/// One line of "format.dat".
/// @throws const char* "MDB: unknown type in record type definition", also for a line without colon
RECORD_ITEM ItemFromDefinition(const std::string& line);
