/// \file record_item.h
/// One item of a record: key name, type and value.
/// Text of a value: "int" decimal; "double" in scientific notation with 16 digits behind the point (reads back to the
/// same bits), a blank where a negative one has its sign; "met" and "utc" as those types print themselves. Failures are
/// thrown as plain character strings.   Threads: plain values.

#pragma once

#include <compare>
#include <string>

#include "time/mission_elapsed_time.h"
#include "time/universal_time.h"

enum class RECORD_ITEM_TYPE : int { NOT_SET = 0, INT = 1, DOUBLE = 2, MET = 3, UTC = 4 };

/// The word of the record type definition. @throws const char* "unknown record item type" for a code outside 0..4
const char* RecordItemTypeText(RECORD_ITEM_TYPE type);
/// @throws const char* "MDB: unknown type in record type definition"; exact, case-sensitive
RECORD_ITEM_TYPE RecordItemTypeFromText(const std::string& word);

class RECORD_ITEM {
  public:
    RECORD_ITEM() = default;
    /// @throws const char* "unknown record item type" for a code outside 0..4
    RECORD_ITEM(std::string key_name, RECORD_ITEM_TYPE type);

    const std::string& KeyName() const { return key_name_; }
    RECORD_ITEM_TYPE Type() const { return type_; }

    /// @throws const char* "MDB: RECORD_ITEM: unknown type" when the item has no type,
    /// "MDB: RECORD_ITEM: value has not the type of the item" when it has another one
    void Set(int value);
    void Set(double value);
    void Set(const MISSION_ELAPSED_TIME& value);
    void Set(const UNIVERSAL_TIME& value);

    /// @throws as Set
    int Int() const;
    double Double() const;
    const MISSION_ELAPSED_TIME& Met() const;
    const UNIVERSAL_TIME& Utc() const;

    /// The value of an "int" or "double" item.
    /// @throws const char* "can not cast from UTC to double", "can not cast from MET to double",
    /// "MDB: RECORD_ITEM: unknown type"
    explicit operator double() const;

    /// @throws const char* "MDB: RECORD_ITEM: unknown type"
    std::string ValueText() const;
    /// @param text  as ValueText gives it; blanks and tabs around it are skipped
    /// @throws const char* "MDB: RECORD_ITEM: unknown type", "MDB: RECORD_ITEM: can not read value"
    void SetFromText(const std::string& text);

    /// Whether ValueText() reads back to this value: a NaN does not, nor a time outside its fields' ranges.
    bool IsReadable() const;

    bool SameNameAndType(const RECORD_ITEM& other) const {
        return key_name_ == other.key_name_ && type_ == other.type_;
    }

    /// By value, within one type; times by their own ordering.
    /// @throws as Set; "MDB: RECORD_ITEM: value is not a number" for a NaN, which has no place in an order
    friend std::weak_ordering CompareValues(const RECORD_ITEM& a, const RECORD_ITEM& b);
    /// |a - b|; seconds for times. @throws as CompareValues
    friend long double Distance(const RECORD_ITEM& a, const RECORD_ITEM& b);

  private:
    void CheckType(RECORD_ITEM_TYPE type) const;

    std::string key_name_;
    RECORD_ITEM_TYPE type_ = RECORD_ITEM_TYPE::NOT_SET;
    int integer_ = 0;
    double real_ = 0;
    MISSION_ELAPSED_TIME met_;
    UNIVERSAL_TIME utc_;
};

std::weak_ordering CompareValues(const RECORD_ITEM& a, const RECORD_ITEM& b);
long double Distance(const RECORD_ITEM& a, const RECORD_ITEM& b);

/// An item's value as one of the time types of an orbit: double, UNIVERSAL_TIME, MISSION_ELAPSED_TIME.
/// @throws as RECORD_ITEM::operator double for double; as Met() and Utc() for the others
template <class S>
S ValueAs(const RECORD_ITEM& item);
template <>
double ValueAs<double>(const RECORD_ITEM& item);
template <>
MISSION_ELAPSED_TIME ValueAs<MISSION_ELAPSED_TIME>(const RECORD_ITEM& item);
template <>
UNIVERSAL_TIME ValueAs<UNIVERSAL_TIME>(const RECORD_ITEM& item);
