#include "lib/baselib/controller/unused_words.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include "lib/baselib/controller/key_suggestions.h"

namespace {

bool BeginsWithLetter(const std::string& text) {
    return !text.empty() && std::isalpha(static_cast<unsigned char>(text[0])) != 0;
}

/// "-pcf"; a negative number is a value.
bool LooksLikeKey(const std::string& argument) {
    return argument.size() > 1 && argument[0] == '-' && (argument[1] == '-' || BeginsWithLetter(argument.substr(1)));
}

bool IsKnown(const GIVEN_WORDS& words, const std::string& name) {
    return std::find(words.known_keys.begin(), words.known_keys.end(), name) != words.known_keys.end();
}

/// Whether the argument behind this unused key is its value, not a key of its own.
bool HasValue(const GIVEN_WORDS& words, int position) {
    const size_t next = static_cast<size_t>(position) + 1;
    return next < words.arguments.size() && !LooksLikeKey(words.arguments[next]);
}

bool IsLast(const GIVEN_WORDS& words, int position) {
    return static_cast<size_t>(position) + 1 == words.arguments.size();
}

std::string WhyKnownKeyIsUnused(const GIVEN_WORDS& words, const LOOKUP_RECORD& record, int position) {
    const std::string& key = words.arguments[static_cast<size_t>(position)];
    if (IsLast(words, position)) return "no value follows it (a flag needs one, too)";
    for (const int used : record.used_arguments)
        if (used > position && words.arguments[static_cast<size_t>(used)] == key) return "a later " + key + " wins";
    return "this run has no use for it";
}

std::string Unused(const std::string& argument, const std::string& why) {
    return "argument " + argument + " is not used" + (why.empty() ? "" : ": " + why);
}

std::string KeyLine(const GIVEN_WORDS& words, const LOOKUP_RECORD& record, int position) {
    const std::string& argument = words.arguments[static_cast<size_t>(position)];
    const std::string name = argument.substr(1);
    if (IsKnown(words, name)) return Unused(argument, WhyKnownKeyIsUnused(words, record, position));
    if (name == "h" || name == "help" || name == "-help")
        return Unused(argument, "--help, as the only argument, tells the keys");
    const std::string key = SuggestedKey(name, words.known_keys, true);
    if (!key.empty()) return "unknown parameter " + name + ": is " + key + " meant?";
    return Unused(argument, "");
}

std::string WordLine(const GIVEN_WORDS& words, const std::string& word) {
    const size_t equals = word.find('=');
    const std::string name = word.substr(0, equals);
    if (IsKnown(words, name))
        return Unused(word,
                      "is -" + name + (equals == std::string::npos ? "" : " " + word.substr(equals + 1)) + " meant?");
    return Unused(word, words.file_is_open ? "" : "is -pcf " + word + " meant?");
}

size_t Count(const std::vector<std::string>& keys, const std::string& key) {
    return static_cast<size_t>(std::count(keys.begin(), keys.end(), key));
}

/// In their order, each once.
std::vector<std::string> DifferentOnes(const std::vector<std::string>& words) {
    std::vector<std::string> different;
    for (const std::string& word : words)
        if (Count(different, word) == 0) different.push_back(word);
    return different;
}

std::string MeantKey(const std::string& word, const GIVEN_WORDS& words, const LOOKUP_RECORD& record) {
    std::string close = SuggestedKey(word, words.known_keys);
    if (!close.empty() || IsKnown(words, word) || !BeginsWithLetter(BareWord(word))) return close;
    std::vector<std::string> missing;
    for (const std::string& key : words.known_keys)
        if (!record.found.contains(key)) missing.push_back(key);
    return KeyWithPiece(word, missing);
}

}  // namespace

std::string MistypedFileKeyLine(const GIVEN_WORDS& words, const std::string& word, const std::string& meant) {
    constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";
    if (!word.starts_with(kByteOrderMark)) return "unknown parameter " + word + ": is " + meant + " meant?";
    return words.file_path + ": its first key is not read, since a byte order mark stands before it: save the file " +
           "without the mark (" + meant + ")";
}

std::vector<std::string> UnusedArgumentLines(const GIVEN_WORDS& words, const LOOKUP_RECORD& record,
                                             bool lookups_follow) {
    std::vector<std::string> lines;
    for (int i = 1; i < static_cast<int>(words.arguments.size()); ++i) {
        const std::string& argument = words.arguments[static_cast<size_t>(i)];
        if (record.used_arguments.contains(i)) {
            ++i;  // its value
        } else if (LooksLikeKey(argument)) {
            const bool may_be_used = lookups_follow && IsKnown(words, argument.substr(1)) && !IsLast(words, i);
            if (!may_be_used) lines.push_back(KeyLine(words, record, i));
            if (HasValue(words, i)) ++i;
        } else {
            lines.push_back(WordLine(words, argument));
        }
    }
    return lines;
}

std::vector<std::string> DoubtfulFileKeyLines(const GIVEN_WORDS& words, const LOOKUP_RECORD& record) {
    std::vector<std::string> lines;
    for (const std::string& word : DifferentOnes(words.file_keys)) {
        const std::string meant = MeantKey(word, words, record);
        if (!meant.empty()) lines.push_back(MistypedFileKeyLine(words, word, meant));
        const size_t count = Count(words.file_keys, word);
        if (count > 1 && IsKnown(words, word))
            lines.push_back(words.file_path + ": key " + word + " stands " + std::to_string(count) +
                            " times, and the order of reading decides which line counts: keep one");
    }
    return lines;
}

std::string UnusedFileKeysLine(const GIVEN_WORDS& words, const LOOKUP_RECORD& record) {
    std::string names;
    for (const std::string& word : DifferentOnes(words.file_keys))
        if (BeginsWithLetter(BareWord(word)) && !record.asked_with_file.contains(word)) names += " " + word;
    return names.empty() ? "" : "keys of " + words.file_path + " that this run did not use:" + names;
}
