/// \file say.h
/// The lines that tell a user how the run goes on.

#pragma once

/// One line at INFO, in printf style.
void Say(const char* format, ...) __attribute__((format(printf, 1, 2)));
/// One line at ALARM that adds facts to a failure whose own line has a fixed text.
void Explain(const char* format, ...) __attribute__((format(printf, 1, 2)));
