/// \file key_suggestions.h
/// Recognises mistyped keys. A word is close to a key when, capitals and small letters being the same, at most this
/// many edits lead from one to the other: none for keys of up to 3 letters, one for up to 7, two for longer ones. An
/// edit inserts, deletes or replaces a letter, or exchanges two neighbours.

#pragma once

#include <string>
#include <vector>

[[nodiscard]] bool IsClose(const std::string& word, const std::string& key);

/// The closest of the known keys, the first of several; empty when the word is itself known, or close to none, or
/// begins with no letter (a number such as -1e-6, a comment such as #MASTER_POOL).
[[nodiscard]] std::string SuggestedKey(const std::string& word, const std::vector<std::string>& known_keys);
