/// \file key_suggestions.h
/// What a mistyped word may have meant. A word is close to a key when, capitals and small letters being the same, at
/// most this many edits lead from one to the other: none for keys of up to 3 letters, one for up to 7, two for longer
/// ones. An edit inserts, deletes or replaces a letter, or exchanges two neighbours. A byte order mark before a word
/// and what follows a "=" in it do not count.

#pragma once

#include <string>
#include <vector>

[[nodiscard]] bool IsClose(const std::string& word, const std::string& key);

/// The closest of the known keys, the first of several; empty when the word is itself known, or close to none, or
/// begins with no letter (a number such as -1e-6, a comment such as #MASTER_POOL).
/// @param surely_wrong  nothing reads the word: one edit is allowed for short keys, too
[[nodiscard]] std::string SuggestedKey(const std::string& word, const std::vector<std::string>& known_keys,
                                       bool surely_wrong = false);

/// The first of the keys of which the word is a piece, or several pieces in a row, between underscores: SIMU_PHASE for
/// PHASE. Empty for words of less than 4 letters, and when there is none.
[[nodiscard]] std::string KeyWithPiece(const std::string& word, const std::vector<std::string>& keys);

/// The word without a byte order mark and without "=" and what follows it.
[[nodiscard]] std::string BareWord(const std::string& word);
