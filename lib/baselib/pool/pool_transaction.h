/// \file pool_transaction.h
/// The change of one or more pools: all of them or none. The pools are locked and read again at the beginning, so that
/// what another run entered meanwhile is kept; the lock lasts to the end.
///
///     POOL_TRANSACTION transaction({&log_pool, &insar_pool});
///     ... Get and Change ...
///     transaction.Commit();
///
/// Every temporary file, those for putting back included, is complete on disk before the first pool is truncated. When
/// a later pool fails, or a fatal signal comes meanwhile, the pools that were already written are put back in the same
/// way.

#pragma once

#include <deque>
#include <string>
#include <utility>
#include <vector>

#include "lib/baselib/pool/parameter_pool_read_write_change.h"
#include "lib/baselib/pool/pool_replacement.h"
#include "lib/baselib/pool/signals_held_back.h"

class POOL_TRANSACTION {
  public:
    /// Two objects on one file count as one pool. The locks are taken in the files' order, so that two runs on the same
    /// pools do not wait for each other.
    /// @throws NO_UPDATE_PERMISSION_FOR_POOL, ERROR_PARAMETER_POOL for a pool that stays locked, what reading throws
    explicit POOL_TRANSACTION(std::vector<PARAMETER_POOL_READ_WRITE_CHANGE*> pools,
                              int longest_wait_s = POOL_FILE::kLongestWaitSeconds);
    ~POOL_TRANSACTION();
    POOL_TRANSACTION(const POOL_TRANSACTION&) = delete;
    POOL_TRANSACTION& operator=(const POOL_TRANSACTION&) = delete;

    /// Writes the collected entries of all pools. After a failure the entries stay collected.
    /// @throws CORRUPTED_PARAMETER_POOL, ERROR_I_O, ERROR_PARAMETER_POOL
    void Commit();
    /// The same. @param held_back  begun before the first pool is changed; after a success signals stay held back
    void Commit(SIGNALS_HELD_BACK& held_back);

  private:
    struct PART {
        PART(const POOL_FILE& file, const std::string& before, std::string after)
            : update(file, std::move(after)), back(file, before) {}
        POOL_REPLACEMENT update;
        POOL_REPLACEMENT back;
    };

    void LockAll(int longest_wait_s);
    void PrepareAll();
    void CopyAll();
    void PutBackAll();
    static void LeaveToRecovery(PART& part) noexcept;
    void RemoveAll();
    [[nodiscard]] PARAMETER_POOL_LIST PendingOf(const POOL_FILE& file) const;

    std::vector<PARAMETER_POOL_READ_WRITE_CHANGE*> pools_;
    std::vector<PARAMETER_POOL_READ_WRITE_CHANGE*> files_;  ///< the first object on each file
    std::deque<PART> parts_;
};
