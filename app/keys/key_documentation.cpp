#include "app/keys/key_documentation.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "app/keys/control_key.h"
#include "app/keys/pool_key.h"

namespace {

struct CONTROL_SECTION {
    const char* title;
    std::vector<KEY_NEED> needs;
};

const std::vector<CONTROL_SECTION>& ControlSections() {
    static const std::vector<CONTROL_SECTION> sections = {
        {"mandatory keys", {KEY_NEED::MANDATORY}},
        {"optional keys", {KEY_NEED::OPTIONAL, KEY_NEED::FLAG}},
        {"optional keys that win over the InSAR pool and are written into it", {KEY_NEED::FORCES_POOL}},
        {"keys for files and logging", {KEY_NEED::STEERING}},
        {"environment", {KEY_NEED::ENVIRONMENT}},
    };
    return sections;
}

struct POOL_SECTION {
    const char* title;
    unsigned homes;
};
constexpr POOL_SECTION kPoolSections[] = {
    {"InSAR pool", kInsarPool}, {"Master and slave pool", kBothPools}, {"DEM pool", kDemPool}};

bool Holds(const CONTROL_SECTION& section, const CONTROL_KEY_ROW& row) {
    return std::find(section.needs.begin(), section.needs.end(), row.need) != section.needs.end();
}

std::string WithUnit(const std::string& type, const std::string& unit) {
    return unit.empty() ? type : type + ", " + unit;
}

std::string HelpLine(const CONTROL_KEY_ROW& row) {
    char start[80] = "";
    std::snprintf(start, sizeof start, "  %-29s  %-11s  ", row.name, WithUnit(row.type, row.unit).c_str());
    const std::string fallback = *row.fallback == '\0' ? "" : " [" + std::string(row.fallback) + "]";
    return start + std::string(row.help) + fallback + "\n";
}

std::string Capitalised(std::string text) {
    if (text[0] >= 'a' && text[0] <= 'z') text[0] = static_cast<char>(text[0] - 'a' + 'A');
    return text;
}

std::string MarkdownRow(const std::vector<std::string>& cells) {
    std::string row = "|";
    for (const std::string& cell : cells) row += " " + cell + (cell.empty() ? "|" : " |");
    return row + "\n";
}

std::string MarkdownHead(const std::string& title, const std::vector<std::string>& columns) {
    std::string head = "\n### " + title + "\n\n" + MarkdownRow(columns) + "|";
    for (size_t i = 0; i < columns.size(); ++i) head += "---|";
    return head + "\n";
}

std::string Code(const std::string& text) {
    return "`" + text + "`";
}

std::string MarkdownOf(const CONTROL_SECTION& section) {
    std::string text =
        MarkdownHead(Capitalised(section.title), {"Key", "Type", "Range", "Without it", "Pool key", "Meaning"});
    for (const CONTROL_KEY_ROW& row : kControlKeys) {
        if (!Holds(section, row)) continue;
        const std::string type = row.need == KEY_NEED::FLAG ? "flag" : WithUnit(row.type, row.unit);
        text += MarkdownRow({Code(row.name), type, row.range.text, row.fallback,
                             *row.pool_key == '\0' ? "" : Code(row.pool_key), row.help});
    }
    return text;
}

/// Which of the section's pools hold the key, where it has several.
std::string Pool(const POOL_KEY_ROW& row, unsigned section) {
    const unsigned homes = row.homes & section;
    if (section != kBothPools) return "";
    return homes == kBothPools ? "both" : homes == kMasterPool ? "master" : "slave";
}

std::string MarkdownOf(const POOL_SECTION& section) {
    std::string text = MarkdownHead(section.title, {"Key", "Type", "Range", "Pool", "When", "Without it", "Meaning"});
    for (const POOL_KEY_ROW& row : POOL_KEYS::kRows) {
        if ((row.homes & section.homes) == 0) continue;
        text += MarkdownRow({Code(row.name), WithUnit(std::string(PoolTag(row.type)), row.unit), row.range.text,
                             Pool(row, section.homes), row.when, row.fallback, row.help});
    }
    return text;
}

}  // namespace

std::string KeysAsHelp() {
    std::string text;
    for (const CONTROL_SECTION& section : ControlSections()) {
        text += "\n" + std::string(section.title) + "\n";
        for (const CONTROL_KEY_ROW& row : kControlKeys)
            if (Holds(section, row)) text += HelpLine(row);
    }
    return text;
}

std::string KeysAsMarkdown() {
    std::string text;
    for (const CONTROL_SECTION& section : ControlSections()) text += MarkdownOf(section);
    for (const POOL_SECTION& section : kPoolSections) text += MarkdownOf(section);
    return text;
}
