/// \file unused_words.h
/// Words that somebody wrote and nobody read: arguments and keys of the control file that no lookup has used.

#pragma once

#include <set>
#include <string>
#include <vector>

/// What the lookups have asked for and found so far.
struct LOOKUP_RECORD {
    std::set<int> used_arguments;           ///< positions of the keys; a value follows each
    std::set<std::string> asked_with_file;  ///< names asked while the control file was open
    std::set<std::string> found;            ///< names that some source had
};

/// What the program knows and what it was given.
struct GIVEN_WORDS {
    std::vector<std::string> arguments;  ///< the program's name first
    std::vector<std::string> file_keys;  ///< first words of the control file's lines, in order
    std::string file_path;
    bool file_is_open = false;
    std::vector<std::string> known_keys;
};

/// One line for each argument that nothing has used, with its value.
/// @param lookups_follow  leave out what a lookup may still use: the known keys that a value follows
[[nodiscard]] std::vector<std::string> UnusedArgumentLines(const GIVEN_WORDS& words, const LOOKUP_RECORD& record,
                                                           bool lookups_follow);

/// A key of the control file that may be another one, or be behind a byte order mark.
[[nodiscard]] std::string MistypedFileKeyLine(const GIVEN_WORDS& words, const std::string& word,
                                              const std::string& meant);

/// One line for each key of the control file that is close to a key, is a piece of one that nobody gave, or stands more
/// than once.
[[nodiscard]] std::vector<std::string> DoubtfulFileKeyLines(const GIVEN_WORDS& words, const LOOKUP_RECORD& record);

/// One line that names all keys of the control file that were not asked for; empty when there is none. Words that begin
/// with no letter are comments.
[[nodiscard]] std::string UnusedFileKeysLine(const GIVEN_WORDS& words, const LOOKUP_RECORD& record);
