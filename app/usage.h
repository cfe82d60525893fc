/// \file usage.h
/// `velmora --help`, `velmora --version` and, for docs/keys.md, `velmora --keys-markdown`.

#pragma once

#include <optional>

/// Answers --help, --version or --keys-markdown, as the only argument, on standard output. No log file or status file
/// comes into being.
/// @return the exit status; nothing when the arguments ask for a run
[[nodiscard]] std::optional<int> AnswerInformationRequest(int argc, char** argv);
