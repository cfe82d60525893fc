#include "lib/baselib/errors/enum_base.h"

#include <algorithm>
#include <mutex>
#include <typeinfo>
#include <utility>

namespace BASIC::TYPES {

namespace {

/// The last conversion that failed, kept process-wide; written and read under its own lock, never the logging's.
struct INVALID_VALUE_RECORD {
    std::mutex mutex;
    std::string value;
    std::string class_name;
    std::string valid_values;
};

INVALID_VALUE_RECORD& InvalidValueRecord() {
    static INVALID_VALUE_RECORD record;
    return record;
}

std::string LowerCase(std::string text) {
    // ASCII by hand: the result must not depend on a locale.
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return text;
}

/// Without the first and the last row: by convention the markers "undefined" and "limit", no values to offer a user.
std::string ValidValues(std::span<const ENUM_BASE::ROW> rows) {
    std::string list = "Valid values are: ";
    for (size_t i = 1; i + 1 < rows.size(); ++i) list += "'" + std::string(rows[i].text) + "' ";
    return list;
}

}  // namespace

ERROR_ENUM_BASE_INVALID_VALUE::ERROR_ENUM_BASE_INVALID_VALUE(std::string value, std::string class_name,
                                                             std::string valid_values)
    : value_(std::move(value)), class_name_(std::move(class_name)), valid_values_(std::move(valid_values)) {}

std::string ERROR_ENUM_BASE_INVALID_VALUE::Message() const {
    return "enumeration data type - invalid value of class " + class_name_ + ": " + value_;
}

std::string ERROR_ENUM_BASE_INVALID_VALUE::ValidValues() const {
    const std::lock_guard lock(InvalidValueRecord().mutex);
    return valid_values_;
}

void ENUM_BASE::RequireWithinLimit(bool within) {
    if (!within) throw ERROR_ENUM_BASE_LIMIT_OF_ENUMERATION_EXPIRED();
}

void ENUM_BASE::RequireSameType(const ENUM_BASE& other) const {
    if (typeid(*this) != typeid(other)) throw ERROR_ENUM_BASE_TYPE_MISMATCH();
}

bool ENUM_BASE::operator==(const ENUM_BASE& other) const {
    RequireSameType(other);
    return id_ == other.id_;
}

bool ENUM_BASE::operator!=(const ENUM_BASE& other) const {
    RequireSameType(other);
    return id_ != other.id_;
}

ENUM_BASE& ENUM_BASE::operator++() {
    RequireWithinLimit(id_ <= LastId());
    AssignId(id_ + 1, true);
    return *this;
}

ENUM_BASE& ENUM_BASE::operator--() {
    RequireWithinLimit(id_ > 0);
    AssignId(id_ - 1, true);
    return *this;
}

void ENUM_BASE::AssignId(int id, bool copy_text) {
    if (id < FirstId() || id > LastId()) throw ERROR_ENUM_BASE_INVALID_ID();
    id_ = id;
    if (copy_text) text_ = Rows()[static_cast<size_t>(id - FirstId())].text;
    RowAssigned();
}

void ENUM_BASE::AssignText(const std::string& text, bool exact) {
    const std::string wanted = exact ? text : LowerCase(text);
    for (const ROW& row : Rows())
        if ((exact ? std::string(row.text) : LowerCase(row.text)) == wanted) return AssignId(row.id, true);
    ThrowInvalidValue(text);
}

void ENUM_BASE::ThrowInvalidValue(const std::string& text) const {
    INVALID_VALUE_RECORD& record = InvalidValueRecord();
    const std::lock_guard lock(record.mutex);
    record.value = text;
    record.class_name = typeid(*this).name();
    record.valid_values = ValidValues(Rows());
    throw ERROR_ENUM_BASE_INVALID_VALUE(record.value, record.class_name, record.valid_values);
}

}  // namespace BASIC::TYPES
