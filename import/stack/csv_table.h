/// \file csv_table.h
/// A table of users: a line of column names, then a row per line. Comma or semicolon between the fields, which may
/// stand in double quotes; blank lines and lines that begin with # are passed over.

#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "companions/companion_error.h"

class CSV_TABLE {
  public:
    struct ROW {
        long long line = 0;  ///< of the file, from 1
        std::vector<std::string> fields;
    };

    /// @param columns  those that may stand in the table, in any order
    /// @throws COMPANION_ERROR for a file that can not be read or has more than 64 MiB, an unknown or repeated column,
    ///         a row of another length, a quote that nothing ends
    CSV_TABLE(const std::string& file, const std::vector<std::string>& columns);

    [[nodiscard]] const std::string& File() const { return file_; }
    [[nodiscard]] const std::vector<ROW>& Rows() const { return rows_; }
    [[nodiscard]] bool Has(const std::string& column) const;
    /// Empty for a column that the table does not have.
    [[nodiscard]] std::string Text(const ROW& row, const std::string& column) const;
    /// "line 3, column orbit"
    [[nodiscard]] VALUE_PLACE Place(const ROW& row, const std::string& column) const;
    [[nodiscard]] VALUE_PLACE PlaceOfNames() const { return {file_, "line " + std::to_string(names_.line)}; }
    /// The line of names as it was read, for messages.
    [[nodiscard]] std::string Names() const;

  private:
    void CheckNames(const std::vector<std::string>& columns) const;

    std::string file_;
    ROW names_;
    std::vector<ROW> rows_;
};
