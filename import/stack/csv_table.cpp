#include "import/stack/csv_table.h"

#include <algorithm>

#include "companions/input_file.h"
#include "import/orbit_files/text_lines.h"

namespace {

constexpr std::size_t kLimitBytes = std::size_t{64} << 20U;

/// Spreadsheets put fields into double quotes, and double those within.
std::vector<std::string> QuotedFields(const TEXT_LINES& lines, char separator) {
    const std::string& line = lines.Line();
    std::vector<std::string> fields(1);
    bool quoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const bool doubled = quoted && line.compare(i, 2, "\"\"") == 0;
        if (doubled) {
            fields.back() += line[i++];
        } else if (line[i] == '"') {
            quoted = !quoted;
        } else if (line[i] == separator && !quoted) {
            fields.emplace_back();
        } else {
            fields.back() += line[i];
        }
    }
    if (quoted) lines.Refuse("a second double quote that ends the field");
    for (std::string& field : fields) field = Trimmed(field);
    return fields;
}

std::string WithoutByteOrderMark(std::string text) {
    constexpr const char* kMark = "\xEF\xBB\xBF";
    if (text.rfind(kMark, 0) == 0) text.erase(0, 3);
    return text;
}

std::string Joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : ",") + word;
    return text;
}

}  // namespace

CSV_TABLE::CSV_TABLE(const std::string& file, const std::vector<std::string>& columns) : file_(file) {
    const std::string content = WithoutByteOrderMark(ReadWholeFile(file, kLimitBytes));
    TEXT_LINES lines(file, content);
    char separator = ',';
    while (lines.Next()) {
        if (lines.Line().front() == '#') continue;
        const bool is_first = names_.fields.empty();
        if (is_first && lines.Line().find(',') == std::string::npos) separator = ';';
        ROW row{lines.Number(), QuotedFields(lines, separator)};
        if (is_first) {
            names_ = std::move(row);
            CheckNames(columns);
        } else if (row.fields.size() != names_.fields.size()) {
            lines.Refuse(std::to_string(names_.fields.size()) + " fields, as in the line of names");
        } else {
            rows_.push_back(std::move(row));
        }
    }
    if (names_.fields.empty())
        throw COMPANION_ERROR(file + ": is empty: expected a line of names, of " + Joined(columns));
}

void CSV_TABLE::CheckNames(const std::vector<std::string>& columns) const {
    const std::vector<std::string>& names = names_.fields;
    for (const std::string& name : names) {
        const bool known = std::find(columns.begin(), columns.end(), name) != columns.end();
        if (!known || std::count(names.begin(), names.end(), name) != 1)
            RefuseValue(PlaceOfNames(), name, "names of columns, each once, of " + Joined(columns));
    }
}

bool CSV_TABLE::Has(const std::string& column) const {
    return std::find(names_.fields.begin(), names_.fields.end(), column) != names_.fields.end();
}

std::string CSV_TABLE::Text(const ROW& row, const std::string& column) const {
    const auto found = std::find(names_.fields.begin(), names_.fields.end(), column);
    if (found == names_.fields.end()) return "";
    return row.fields[static_cast<std::size_t>(found - names_.fields.begin())];
}

VALUE_PLACE CSV_TABLE::Place(const ROW& row, const std::string& column) const {
    return {file_, "line " + std::to_string(row.line) + ", column " + column};
}

std::string CSV_TABLE::Names() const {
    return Joined(names_.fields);
}
