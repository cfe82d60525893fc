#include "app/check/pool_sweep.h"

#include <string_view>

#include "app/keys/pool_values.h"

namespace {

bool IsRead(const POOL_KEY_ROW& row, POOL_HOME home, const RUN_KIND& kind) {
    const std::string_view when = row.when;
    if (*row.fallback != '\0') return false;
    if (row.homes == (kInsarPool | kMasterPool)) return (home == kMasterPool) == kind.permanent_scatterer;
    return when.empty() || (when == POOL_KEYS::kStandard && !kind.permanent_scatterer) ||
           (when == POOL_KEYS::kScatterers && kind.permanent_scatterer) ||
           (when == POOL_KEYS::kSinglePass && kind.single_pass);
}

void ReadRow(PARAMETER_POOL& pool, const POOL_KEY_ROW& row) {
    const VALUE_SOURCE source{pool.FileName(), row.name};
    if (row.type == POOL_KEYS::kInteger)
        RequireInRange(source, pool.Get<int>(row.name), row.range);
    else if (row.type == POOL_KEYS::kReal)
        RequireInRange(source, pool.Get<double>(row.name), row.range);
    else if (row.type == POOL_KEYS::kReals)
        static_cast<void>(pool.Get<ARRAY<double>>(row.name));
    else
        static_cast<void>(pool.Get<STRING>(row.name));
}

}  // namespace

void SweepPool(PARAMETER_POOL& pool, POOL_HOME home, const RUN_KIND& kind, PROBLEM_LIST& problems) {
    for (const POOL_KEY_ROW& row : POOL_KEYS::kRows) {
        if ((row.homes & home) != 0 && IsRead(row, home, kind)) problems.Try([&] { ReadRow(pool, row); });
    }
}
