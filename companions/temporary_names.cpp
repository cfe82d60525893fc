#include "companions/temporary_names.h"

#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>

namespace {

constexpr std::array<int, 4> kSignals = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};

/// Own copies of the names, made by strdup; a handler reads them.
std::array<std::atomic<char*>, 64> names{};

extern "C" void RemoveAndEnd(int signal_number) {
    for (const std::atomic<char*>& name : names) {
        const char* const path = name;
        if (path != nullptr) unlink(path);
    }
    std::signal(signal_number, SIG_DFL);
    raise(signal_number);
}

sigset_t SetOfSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal_number : kSignals) sigaddset(&set, signal_number);
    return set;
}

}  // namespace

void RememberTemporary(const std::string& name) {
    for (std::atomic<char*>& slot : names) {
        if (slot != nullptr) continue;
        slot = strdup(name.c_str());
        return;
    }
}

void ForgetTemporary(const std::string& name) noexcept {
    for (std::atomic<char*>& slot : names) {
        char* const kept = slot;
        if (kept == nullptr || name != kept) continue;
        slot = nullptr;
        std::free(kept);
        return;
    }
}

void InstallTemporaryFileRemoval() {
    for (const int signal_number : kSignals) {
        struct sigaction present {};
        sigaction(signal_number, nullptr, &present);
        if (present.sa_handler != SIG_IGN) std::signal(signal_number, RemoveAndEnd);
    }
}

TEMPORARY_NAMES_KEPT::TEMPORARY_NAMES_KEPT() {
    const sigset_t set = SetOfSignals();
    pthread_sigmask(SIG_BLOCK, &set, &before_);
}

TEMPORARY_NAMES_KEPT::~TEMPORARY_NAMES_KEPT() {
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}
