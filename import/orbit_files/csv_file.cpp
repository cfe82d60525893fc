#include "import/orbit_files/csv_file.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <iterator>

#include "import/orbit_files/text_lines.h"
#include "import/orbit_files/time_scales.h"

namespace {

constexpr std::array<const char*, 6> kCoordinates = {"x", "y", "z", "vx", "vy", "vz"};
constexpr const char* kExpectedColumns =
    "a line of column names with t_utc (or t_tai, t_gps), x, y, z in metres and vx, vy, vz in metres per second";

struct COLUMNS {
    char separator = ',';
    std::size_t time = 0;
    TIME_SCALE scale = TIME_SCALE::UTC;
    std::array<std::size_t, kCoordinates.size()> coordinates{};
};

std::string LowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

std::optional<TIME_SCALE> ScaleOfColumn(const std::string& name) {
    constexpr struct {
        const char* suffix;
        TIME_SCALE scale;
    } kScales[] = {{"utc", TIME_SCALE::UTC}, {"tai", TIME_SCALE::TAI}, {"gps", TIME_SCALE::GPS}};
    for (const auto& row : kScales) {
        for (const char* const prefix : {"", "t_", "time_"}) {
            if (name == std::string(prefix) + row.suffix) return row.scale;
        }
    }
    return std::nullopt;
}

std::size_t CoordinateOfColumn(const std::string& name) {
    for (std::size_t i = 0; i < kCoordinates.size(); ++i) {
        const std::string coordinate = kCoordinates[i];
        const bool is_velocity = coordinate.size() == 2;
        if (name == coordinate || name == coordinate + (is_velocity ? "_m_s" : "_m")) return i;
    }
    return kCoordinates.size();
}

COLUMNS ColumnsOf(const TEXT_LINES& lines) {
    COLUMNS columns;
    columns.separator = lines.Line().find(';') == std::string::npos ? ',' : ';';
    const std::vector<std::string> names = FieldsOf(lines.Line(), columns.separator);
    int times = 0;
    std::array<int, kCoordinates.size()> found{};
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::string name = LowerCase(names[i]);
        const std::size_t coordinate = CoordinateOfColumn(name);
        if (const auto scale = ScaleOfColumn(name)) {
            columns.scale = *scale;
            columns.time = i;
            ++times;
        } else if (coordinate < found.size()) {
            columns.coordinates[coordinate] = i;
            ++found[coordinate];
        }
    }
    const bool each_once = std::all_of(found.begin(), found.end(), [](int count) { return count == 1; });
    if (times != 1 || !each_once) lines.Refuse(kExpectedColumns);
    return columns;
}

UTC_STATE_VECTOR VectorOf(const TEXT_LINES& lines, const COLUMNS& columns, std::size_t field_count) {
    const std::vector<std::string> fields = FieldsOf(lines.Line(), columns.separator);
    if (fields.size() != field_count) lines.Refuse(std::to_string(field_count) + " values, as in the line of names");
    double si[kCoordinates.size()];
    for (std::size_t i = 0; i < kCoordinates.size(); ++i) si[i] = RealOf(lines.Place(), fields[columns.coordinates[i]]);
    return {UtcOf(lines.Place(), fields[columns.time], columns.scale), {si[0], si[1], si[2]}, {si[3], si[4], si[5]}};
}

}  // namespace

ORBIT_TABLE ParseCsv(const std::string& file, const std::string& content) {
    ORBIT_TABLE table{file, "CSV", "", {}};
    TEXT_LINES lines(file, content);
    COLUMNS columns;
    std::size_t field_count = 0;
    while (lines.Next()) {
        if (lines.Line().front() == '#') continue;
        if (field_count == 0) {
            columns = ColumnsOf(lines);
            field_count = FieldsOf(lines.Line(), columns.separator).size();
        } else {
            table.vectors.push_back(VectorOf(lines, columns, field_count));
        }
    }
    if (field_count == 0) throw COMPANION_ERROR(file + ": is empty: expected " + kExpectedColumns);
    return table;
}
