/// \file usage.h
/// `velmora --help` and `velmora --version`.

#pragma once

#include <optional>

/// Answers --help or --version, as the only argument, on standard output. No log file or status file comes into being.
/// @return the exit status; nothing when the arguments ask for a run
[[nodiscard]] std::optional<int> AnswerInformationRequest(int argc, char** argv);
