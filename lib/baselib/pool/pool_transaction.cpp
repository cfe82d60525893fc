#include "lib/baselib/pool/pool_transaction.h"

#include <pthread.h>
#include <signal.h>

#include <algorithm>
#include <utility>

#include "lib/baselib/logging/logging.h"
#include "lib/baselib/pool/updated_content.h"

namespace {

/// Holds back every signal that can wait: one that ended the process between truncation and copy would leave an empty
/// pool. What a broken program raises itself (SIGSEGV and the like) is not held back by a mask, nor is SIGKILL.
class SIGNALS_HELD_BACK {
  public:
    SIGNALS_HELD_BACK() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, &before_);
    }
    ~SIGNALS_HELD_BACK() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SIGNALS_HELD_BACK(const SIGNALS_HELD_BACK&) = delete;
    SIGNALS_HELD_BACK& operator=(const SIGNALS_HELD_BACK&) = delete;

    /// Whether the process ends as soon as the signals come through.
    [[nodiscard]] static bool EndIsNear() {
        sigset_t pending;
        if (sigpending(&pending) != 0) return false;
        for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGXCPU, SIGXFSZ, SIGURG}) {
            struct sigaction action {};
            if (sigismember(&pending, number) == 1 && sigaction(number, nullptr, &action) == 0 &&
                action.sa_handler != SIG_IGN && (number != SIGURG || action.sa_handler != SIG_DFL)) {
                return true;
            }
        }
        return false;
    }

  private:
    sigset_t before_{};
};

}  // namespace

POOL_TRANSACTION::POOL_TRANSACTION(std::vector<PARAMETER_POOL_READ_WRITE_CHANGE*> pools) : pools_(std::move(pools)) {
    for (PARAMETER_POOL_READ_WRITE_CHANGE* pool : pools_) pool->RequirePermission();
    for (PARAMETER_POOL_READ_WRITE_CHANGE* pool : pools_) {
        const bool is_known = std::any_of(files_.begin(), files_.end(), [pool](const auto& other) {
            return other->File().Identity() == pool->File().Identity();
        });
        if (!is_known) files_.push_back(pool);
    }
    std::sort(files_.begin(), files_.end(),
              [](auto* a, auto* b) { return a->File().Identity() < b->File().Identity(); });
    try {
        LockAll();
    } catch (...) {
        for (PARAMETER_POOL_READ_WRITE_CHANGE* pool : pools_) pool->ReleaseLock();
        throw;
    }
}

POOL_TRANSACTION::~POOL_TRANSACTION() {
    for (PARAMETER_POOL_READ_WRITE_CHANGE* pool : pools_) pool->ReleaseLock();
}

void POOL_TRANSACTION::LockAll() {
    for (PARAMETER_POOL_READ_WRITE_CHANGE* pool : files_) pool->File().Lock(POOL_FILE::LOCK::EXCLUSIVE);
    for (PARAMETER_POOL_READ_WRITE_CHANGE* pool : pools_) {
        pool->HoldLock();
        (void)pool->Text();
    }
}

PARAMETER_POOL_LIST POOL_TRANSACTION::PendingOf(const POOL_FILE& file) const {
    PARAMETER_POOL_LIST items;
    for (PARAMETER_POOL_READ_WRITE_CHANGE* pool : pools_) {
        if (pool->File().Identity() != file.Identity()) continue;
        for (const PARAMETER_POOL_ITEM& item : pool->pending_) items.Put(item);
    }
    return items;
}

void POOL_TRANSACTION::Commit() {
    PrepareAll();
    PARAMETER_POOL_READ_WRITE_CHANGE::CountUpdate();
    AnnounceAll();
    const SIGNALS_HELD_BACK held_back;
    CopyAll();
    RemoveAll();
    for (PARAMETER_POOL_READ_WRITE_CHANGE* pool : pools_) pool->pending_.Clear();
}

/// The last step that may fail for want of memory, with pools as they were.
void POOL_TRANSACTION::AnnounceAll() {
    try {
        for (const PART& part : parts_) part.update.Announce();
    } catch (...) {
        RemoveAll();
        throw;
    }
}

void POOL_TRANSACTION::PrepareAll() {
    parts_.clear();
    try {
        for (PARAMETER_POOL_READ_WRITE_CHANGE* pool : files_) {
            PARAMETER_POOL_LIST items = PendingOf(pool->File());
            if (items.IsEmpty()) continue;
            const std::string& text = pool->Text();
            PART& part = parts_.emplace_back(pool->File(), text, UpdatedContent(text, std::move(items)));
            part.update.Prepare();
            part.back.Prepare();
        }
    } catch (...) {
        RemoveAll();
        throw;
    }
}

void POOL_TRANSACTION::CopyAll() {
    try {
        for (PART& part : parts_) {
            part.update.CopyIntoPool();
            part.update.Remove();  // at once: a pool that is cut off then has one left-over, its own
        }
        if (!SIGNALS_HELD_BACK::EndIsNear()) return;
        Log().Message(LOGGING_LEVEL::WARNING, "a signal came during the update of the pools: they are put back");
    } catch (...) {
        PutBackAll();
        throw;
    }
    PutBackAll();
    throw ERROR_PARAMETER_POOL();
}

void POOL_TRANSACTION::PutBackAll() {
    for (PART& part : parts_) {
        try {
            if (part.update.HasTouchedPool()) part.back.CopyIntoPool();
        } catch (...) {
            LeaveToRecovery(part);
        }
        part.update.Remove();
        part.back.Remove();
    }
}

/// The other pools are still to be put back, so nothing may be thrown here.
void POOL_TRANSACTION::LeaveToRecovery(PART& part) noexcept {
    try {
        (part.update.HasTemporary() ? part.update : part.back).LeaveToRecovery();
    } catch (...) {  // no memory for the line that tells
    }
}

void POOL_TRANSACTION::RemoveAll() {
    for (PART& part : parts_) {
        part.update.Remove();
        part.back.Remove();
    }
}
