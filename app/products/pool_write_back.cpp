#include "app/products/pool_write_back.h"

#include "lib/baselib/pool/pool_transaction.h"

void TryHistory(PARAMETER_POOL_READ_WRITE_CHANGE& log_pool, const HISTORY_ENTRY& entry) {
    SOFTWARE_HISTORY history;
    history.ReadFrom(log_pool);
    history.Enter(entry);
    history.WriteInto(log_pool);
}

void WriteBackPools(RUN_POOLS& pools, const HISTORY_ENTRY& entry, SIGNALS_HELD_BACK& held_back) {
    POOL_TRANSACTION transaction({&pools.HistoryPool(), &pools.insar});
    TryHistory(pools.HistoryPool(), entry);
    transaction.Commit(held_back);
}
