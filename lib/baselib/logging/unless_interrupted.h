/// \file unless_interrupted.h
/// System calls that a signal interrupts before they have done anything. No allocation, no lock: for signal handlers,
/// too.

#pragma once

#include <cerrno>

/// A system call that returns -1 on failure, made again while a signal interrupts it.
template <class CALL>
auto UnlessInterrupted(const CALL& call) {
    constexpr int kMostTries = 100;  // a call that never gets through is an error, not a hang
    auto result = call();
    for (int i = 1; result < 0 && errno == EINTR && i < kMostTries; ++i) result = call();
    return result;
}
