#include "app/request/product_groups.h"

#include <algorithm>
#include <string>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

namespace {

std::string KeysOf(std::initializer_list<SOURCED_TEXT> files) {
    std::string keys;
    for (const SOURCED_TEXT& file : files) keys += (keys.empty() ? "" : ", ") + file.source.key;
    return keys;
}

}  // namespace

void CheckProductGroup(std::initializer_list<SOURCED_TEXT> files) {
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
