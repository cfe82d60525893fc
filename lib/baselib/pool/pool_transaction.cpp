#include "lib/baselib/pool/pool_transaction.h"

#include <algorithm>
#include <utility>

#include "lib/baselib/logging/logging.h"
#include "lib/baselib/pool/updated_content.h"

POOL_TRANSACTION::POOL_TRANSACTION(std::vector<PARAMETER_POOL_READ_WRITE_CHANGE*> pools, int longest_wait_s)
    : pools_(std::move(pools)) {
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
        LockAll(longest_wait_s);
    } catch (...) {
        for (PARAMETER_POOL_READ_WRITE_CHANGE* pool : pools_) pool->ReleaseLock();
        throw;
    }
}

POOL_TRANSACTION::~POOL_TRANSACTION() {
    for (PARAMETER_POOL_READ_WRITE_CHANGE* pool : pools_) pool->ReleaseLock();
}

void POOL_TRANSACTION::LockAll(int longest_wait_s) {
    for (PARAMETER_POOL_READ_WRITE_CHANGE* pool : files_) pool->File().Lock(POOL_FILE::LOCK::EXCLUSIVE, longest_wait_s);
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
    SIGNALS_HELD_BACK held_back;
    Commit(held_back);
}

void POOL_TRANSACTION::Commit(SIGNALS_HELD_BACK& held_back) {
    PrepareAll();
    PARAMETER_POOL_READ_WRITE_CHANGE::CountUpdate();
    held_back.Begin();
    try {
        CopyAll();
    } catch (...) {
        held_back.End();
        throw;
    }
    RemoveAll();
    for (PARAMETER_POOL_READ_WRITE_CHANGE* pool : pools_) pool->pending_.Clear();
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
        for (const PART& part : parts_) part.update.Announce();  // the last that may fail for want of memory
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
        throw ERROR_PARAMETER_POOL();
    } catch (...) {
        PutBackAll();
        throw;
    }
}

void POOL_TRANSACTION::PutBackAll() {
    for (PART& part : parts_) {
        try {
            if (part.update.HasTouchedPool()) part.back.PutBack();
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
