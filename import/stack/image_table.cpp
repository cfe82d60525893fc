#include "import/stack/image_table.h"

#include <algorithm>
#include <filesystem>
#include <map>

namespace {

bool IsLetterOrDigit(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

bool IsGoodName(const std::string& name) {
    constexpr std::size_t kMostCharacters = 100;
    if (name.empty() || name.size() > kMostCharacters) return false;
    if (!IsLetterOrDigit(name.front()) || name.back() == '.' || name.back() == '_') return false;
    if (name.find("__") != std::string::npos) return false;
    return std::all_of(name.begin(), name.end(),
                       [](char c) { return IsLetterOrDigit(c) || c == '.' || c == '-' || c == '_'; });
}

std::string WithoutCapitals(std::string text) {
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return text;
}

std::string FromTable(const std::string& table, const std::string& path) {
    return path.empty() ? path : (std::filesystem::path(table).parent_path() / path).string();
}

IMAGE_ROW RowOf(const CSV_TABLE& table, const CSV_TABLE::ROW& row) {
    IMAGE_ROW image{table.Text(row, "name"), table.Text(row, "annotation"), table.Text(row, "pool"),
                    table.Text(row, "orbit"), table.Place(row, "annotation")};
    if (!IsGoodName(image.name))
        RefuseValue(table.Place(row, "name"), image.name,
                    "at most 100 letters, digits, \".\", \"-\" and single \"_\", a letter or digit first, no \".\" or "
                    "\"_\" last");
    if (image.annotation.empty() == image.pool.empty())
        RefuseValue(image.place, image.annotation, "either an annotation file or, in the column pool, a pool");
    if (!image.pool.empty()) image.place = table.Place(row, "pool");
    if (!image.pool.empty() && !image.orbit.empty())
        RefuseValue(table.Place(row, "orbit"), image.orbit,
                    "no orbit file beside a pool, which has its state vectors (velmora-import orbit replaces them)");
    for (std::string* path : {&image.annotation, &image.pool, &image.orbit}) *path = FromTable(table.File(), *path);
    return image;
}

}  // namespace

std::vector<IMAGE_ROW> ReadImageTable(const std::string& file) {
    const CSV_TABLE table(file, {"name", "annotation", "orbit", "pool"});
    if (!table.Has("name")) RefuseValue(table.PlaceOfNames(), table.Names(), "a column name");
    std::vector<IMAGE_ROW> images;
    std::map<std::string, long long> lines;
    for (const CSV_TABLE::ROW& row : table.Rows()) {
        images.push_back(RowOf(table, row));
        const auto [earlier, is_new] = lines.emplace(WithoutCapitals(images.back().name), row.line);
        if (!is_new)
            RefuseValue(table.Place(row, "name"), images.back().name,
                        "another name than in line " + std::to_string(earlier->second) +
                            ", also for file systems that know no capitals");
    }
    return images;
}
