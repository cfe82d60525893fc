#include "app/keys/mistyped_pool_keys.h"

#include <algorithm>
#include <string>
#include <vector>

#include "lib/baselib/controller/key_suggestions.h"
#include "lib/baselib/logging/logging.h"

namespace {

bool IsKnown(const std::string& key) {
    return std::any_of(std::begin(POOL_KEYS::kRows), std::end(POOL_KEYS::kRows),
                       [&key](const POOL_KEY_ROW& row) { return key == row.name; });
}

/// Keys that no program of ours reads, in the order of their letters.
std::vector<std::string> ForeignKeys(PARAMETER_POOL& pool) {
    std::vector<std::string> keys = pool.Keys();
    std::erase_if(keys, IsKnown);
    std::sort(keys.begin(), keys.end());
    return keys;
}

}  // namespace

void WarnAboutMistypedKeys(PARAMETER_POOL& pool, POOL_HOME home) {
    std::vector<std::string> missing;
    for (const POOL_KEY_ROW& row : POOL_KEYS::kRows)
        if ((row.homes & home) != 0 && *row.fallback != '\0' && !pool.FindKey(row.name)) missing.emplace_back(row.name);
    for (const std::string& word : ForeignKeys(pool)) {
        const std::string key = SuggestedKey(word, missing);
        if (!key.empty())
            Log().Message(LOGGING_LEVEL::WARNING, "%s: unknown key \"%s\": is \"%s\" meant?", pool.FileName().c_str(),
                          word.c_str(), key.c_str());
    }
}
