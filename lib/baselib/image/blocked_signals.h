/// \file blocked_signals.h
/// For steps of microseconds that a fatal signal's handler shall find done or not begun: the making of a temporary and
/// the note of its name, the renaming of a set of products. Of the calling thread; others must not run then.

#pragma once

#include <pthread.h>

#include <csignal>

class BLOCKED_SIGNALS {
  public:
    BLOCKED_SIGNALS() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, &before_);
    }
    BLOCKED_SIGNALS(const BLOCKED_SIGNALS&) = delete;
    BLOCKED_SIGNALS& operator=(const BLOCKED_SIGNALS&) = delete;
    ~BLOCKED_SIGNALS() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

  private:
    sigset_t before_{};
};
