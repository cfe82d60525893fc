/// \file key_documentation.h
/// The tables of keys as text: for `--help` and for docs/keys.md.

#pragma once

#include <string>

/// Lines of name, type with unit, meaning and default, in sections.
[[nodiscard]] std::string KeysAsHelp();
/// The same and the pools' keys as tables in Markdown, with ranges.
[[nodiscard]] std::string KeysAsMarkdown();
