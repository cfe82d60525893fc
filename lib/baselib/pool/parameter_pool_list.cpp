#include "lib/baselib/pool/parameter_pool_list.h"

#include <algorithm>

#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/pool/line_reader.h"
#include "lib/baselib/pool/pool_errors.h"

namespace {

template <class ERROR>
[[noreturn]] void Fail(const std::string& key, const std::string& reason) {
    LogAndThrow<ERROR>("key \"%s\": %s", key.c_str(), reason.c_str());
}

/// A key must read back as the first word of an entry line, never as a comment, brace or string element.
bool IsKey(const std::string& key) {
    return !key.empty() && key.find_first_of(std::string_view("\t\n\r \0", 5)) == std::string::npos &&
           key.front() != '#' && key.front() != '"' && key != "{" && key != "}";
}

}  // namespace

std::string PARAMETER_POOL_ITEM::CommentText() const {
    std::string text;
    for (const std::string& comment : comments) text += '#' + comment + '\n';
    return text;
}

void PARAMETER_POOL_ITEM::Check() const {
    if (key.size() > kPoolKeyLength) Fail<PARAMETER_KEY_TOO_LONG>(key, "a key has at most 100 characters");
    if (!IsKey(key)) Fail<ERROR_ARGUMENT>(key, "this is no key");
    for (const std::string& comment : comments) {
        if (comment.find_first_of("\n\r") != std::string::npos || comment.size() >= kPoolLineLength) {
            Fail<ERROR_ARGUMENT>(key, "a comment holds a line end or is longer than a line");
        }
    }
    const std::string text = EntryText();
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = text.find('\n', begin);
        if (end - begin > kPoolLineLength) {
            Fail<INVALID_PARAMETER_VALUE>(key, "a line would have " + std::to_string(end - begin) + " characters, " +
                                                   std::to_string(kPoolLineLength) + " are possible");
        }
        begin = end + 1;
    }
}

void PARAMETER_POOL_LIST::Put(PARAMETER_POOL_ITEM item) {
    Take(item.key);
    items_.push_back(std::move(item));
}

std::optional<PARAMETER_POOL_ITEM> PARAMETER_POOL_LIST::Take(std::string_view key) {
    const auto found = std::find_if(items_.begin(), items_.end(), [key](const auto& item) { return item.key == key; });
    if (found == items_.end()) return std::nullopt;
    std::optional<PARAMETER_POOL_ITEM> item = std::move(*found);
    items_.erase(found);
    return item;
}
