/// \file hard_stop.h
/// The end of a run that must not make a product: what was logged is flushed, then the process ends with status 1.
/// No static destructor runs, since other threads may still be working; the ERROR file stays and no pool changes.

#pragma once

#include <unistd.h>

#include <cstdio>

[[noreturn]] inline void EndProcess() {
    std::fflush(nullptr);
    _exit(1);
}
