#include "app/request/line_of_sight_files.h"

#include <cctype>
#include <filesystem>

std::string LineOfSightPath(const std::string& given, char component) {
    const std::filesystem::path path(given);
    const std::string ending = path.has_extension() ? path.extension().string() : ".ras";
    return (path.parent_path() / path.stem()).string() + "_" + component + ending;
}

LINE_OF_SIGHT_FILES LineOfSightFiles(const SOURCED_TEXT& given) {
    LINE_OF_SIGHT_FILES files;
    if (!given.Given()) return files;
    constexpr const char* kComponents = "enu";
    for (int i = 0; i < 3; ++i) {
        files[i] = given;
        files[i].text = LineOfSightPath(given.text, kComponents[i]);
        files[i].source.key += std::string("_") + static_cast<char>(std::toupper(kComponents[i]));
    }
    return files;
}
