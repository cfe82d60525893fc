/// \file enum_base.h
/// Base of every named enumeration: an identifier and its text, converted into each other through a table of rows that
/// the derived type owns. Rows stand in the order of their identifiers, without gaps, from the first to the last.
/// A derived type gives its table and may carry further data of an enumerator:
///
///     class COLOUR : public BASIC::TYPES::ENUM_BASE {
///       public:
///         explicit COLOUR(int id) { AssignId(id, true); }
///       private:
///         std::span<const ROW> Rows() const override;   // a function-local static table
///     };
///
/// Threads: plain values; the record of the last invalid value is process-wide and has a lock of its own.

#pragma once

#include <concepts>
#include <span>
#include <string>

#include "lib/baselib/errors/error_exception.h"

namespace BASIC::TYPES {

class ERROR_ENUM_BASE : public ERROR_WITH_TEXT<ERROR_EXCEPTION, &ERROR_TEXTS::enum_base> {};
class ERROR_ENUM_BASE_INVALID_ID : public ERROR_WITH_TEXT<ERROR_ENUM_BASE, &ERROR_TEXTS::enum_base_invalid_id> {};
class ERROR_ENUM_BASE_TYPE_MISMATCH : public ERROR_WITH_TEXT<ERROR_ENUM_BASE, &ERROR_TEXTS::enum_base_type_mismatch> {};
class ERROR_ENUM_BASE_LIMIT_OF_ENUMERATION_EXPIRED
    : public ERROR_WITH_TEXT<ERROR_ENUM_BASE, &ERROR_TEXTS::enum_base_limit_of_enumeration_expired> {};

/// A text that names no enumerator. The only error with data: what was given, for which type, what would be valid.
class ERROR_ENUM_BASE_INVALID_VALUE : public ERROR_ENUM_BASE {
  public:
    ERROR_ENUM_BASE_INVALID_VALUE(std::string value, std::string class_name, std::string valid_values);
    /// "enumeration data type - invalid value of class CLASS: VALUE"
    [[nodiscard]] std::string Message() const override;
    /// "Valid values are: 'a' 'b' ", copied under the lock of the enumeration errors.
    [[nodiscard]] std::string ValidValues() const;

  private:
    std::string value_;
    std::string class_name_;
    std::string valid_values_;
};

class ENUM_BASE {
  public:
    struct ROW {
        int id;
        const char* text;
    };

    virtual ~ENUM_BASE() = default;

    [[nodiscard]] int Id() const { return id_; }
    [[nodiscard]] const std::string& Text() const { return text_; }
    [[nodiscard]] virtual int LastId() const { return Rows().back().id; }
    [[nodiscard]] int FirstId() const { return Rows().front().id; }

    /// Compare identifiers. @throws ERROR_ENUM_BASE_TYPE_MISMATCH for operands of different dynamic types
    virtual bool operator==(const ENUM_BASE& other) const;
    virtual bool operator!=(const ENUM_BASE& other) const;

    /// The next identifier. Beyond the last one the assignment fails (invalid id); already beyond it: limit expired.
    virtual ENUM_BASE& operator++();
    /// The previous identifier. The limit is identifier 0 for every type, whatever its first identifier: a type that
    /// starts above 0 fails below its first enumerator in the assignment (invalid id).
    virtual ENUM_BASE& operator--();

    /// @throws ERROR_ENUM_BASE_INVALID_ID outside first..last
    virtual void AssignId(int id, bool copy_text);
    /// @param exact compare byte by byte; otherwise capitals and small letters (ASCII) are the same
    /// @throws ERROR_ENUM_BASE_INVALID_VALUE when no row has this text
    void AssignText(const std::string& text, bool exact);

  protected:
    ENUM_BASE() = default;
    ENUM_BASE(const ENUM_BASE&) = default;
    ENUM_BASE& operator=(const ENUM_BASE&) = default;

    /// The table; never empty.
    [[nodiscard]] virtual std::span<const ROW> Rows() const = 0;
    /// Called after each assignment, for further data of the new enumerator.
    virtual void RowAssigned() {}

  private:
    static void RequireWithinLimit(bool within);
    void RequireSameType(const ENUM_BASE& other) const;
    [[noreturn]] void ThrowInvalidValue(const std::string& text) const;

    int id_ = 0;
    std::string text_;
};

/// The postfix forms yield the previous value as the type it is, with all its data; hence templates, not virtual.
template <std::derived_from<ENUM_BASE> ENUMERATION>
ENUMERATION operator++(ENUMERATION& value, int) {
    ENUMERATION previous = value;
    ++value;
    return previous;
}

template <std::derived_from<ENUM_BASE> ENUMERATION>
ENUMERATION operator--(ENUMERATION& value, int) {
    ENUMERATION previous = value;
    --value;
    return previous;
}

}  // namespace BASIC::TYPES
