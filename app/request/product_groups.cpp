#include "app/request/product_groups.h"

#include <algorithm>
#include <string>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

namespace {

std::string KeysOf(const std::vector<SOURCED_TEXT>& files) {
    std::string keys;
    for (const SOURCED_TEXT& file : files) keys += (keys.empty() ? "" : ", ") + file.source.key;
    return keys;
}

void CheckPaths(const std::vector<SOURCED_TEXT>& files) {
    const auto named = std::find_if(files.begin(), files.end(), [](const SOURCED_TEXT& file) { return file.Given(); });
    if (named == files.end()) {
        Log().Message(LOGGING_LEVEL::WARNING, "%s given without a path: nothing is written for it",
                      KeysOf(files).c_str());
        return;
    }
    bool complete = true;
    for (const SOURCED_TEXT& file : files) {
        if (file.Given()) continue;
        LogRefusal(file.source, "\"\"",
                   "is no path, and " + named->source.key + " names one: both are written or none");
        complete = false;
    }
    if (!complete) throw ERROR_PARAMETER();
}

}  // namespace

std::optional<SOURCED_TEXT> ReadProduct(CONTROLLER_IFC& controller, CONTROL_KEY key) {
    std::optional<SOURCED_TEXT> file = OptionalText(controller, key);
    if (file) CheckPaths({*file});
    return file;
}

std::vector<SOURCED_TEXT> ReadProductGroup(CONTROLLER_IFC& controller, std::initializer_list<CONTROL_KEY> keys) {
    std::vector<SOURCED_TEXT> files;
    if (std::none_of(keys.begin(), keys.end(), [&](const CONTROL_KEY& key) { return IsGiven(controller, key); }))
        return files;
    for (const CONTROL_KEY& key : keys) files.push_back(RequiredText(controller, key));
    CheckPaths(files);
    return files;
}
