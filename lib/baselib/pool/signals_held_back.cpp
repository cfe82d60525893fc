#include "lib/baselib/pool/signals_held_back.h"

#include <pthread.h>

#include <initializer_list>

void SIGNALS_HELD_BACK::Begin() {
    if (active_) return;
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &before_);
    active_ = true;
}

void SIGNALS_HELD_BACK::End() {
    if (active_) pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    active_ = false;
}

bool SIGNALS_HELD_BACK::EndIsNear() {
    sigset_t pending;
    sigpending(&pending);  // which fails for a bad address alone
    for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGXCPU, SIGXFSZ, SIGURG}) {
        struct sigaction action {};
        if (sigismember(&pending, number) == 1 && sigaction(number, nullptr, &action) == 0 &&
            action.sa_handler != SIG_IGN && (number != SIGURG || action.sa_handler != SIG_DFL)) {
            return true;
        }
    }
    return false;
}
