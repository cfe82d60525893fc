/// \file check_run.h
/// `velmora --check ...`: all of stage A, and figures of the run to come, on standard output. Nothing is written: no
/// log, no status file, no pool, no product.

#pragma once

/// Whether --check stands among the arguments; it is taken out of them.
[[nodiscard]] bool TakeCheckRequest(int& argc, char** argv);

/// Ends the process with the status that a run would have after stage A: 0, 1 with all problems found, 2 for a STOP
/// file.
[[noreturn]] void CheckRun(int argc, char** argv);
