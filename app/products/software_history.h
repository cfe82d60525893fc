/// \file software_history.h
/// The programs that have worked on a product: six lists of equal length in the log pool, one position per program.
///
///     software_names STR_V 0 1          software_versions, software_dates, software_start_times,
///     {                                 software_end_times: likewise
///         velmora                       software_execution_times INT_32_V: seconds
///     }
///
/// Times are local, "%Y-%m-%dT%H:%M:%S", as in the log's header and footer.

#pragma once

#include <ctime>
#include <string>
#include <vector>

#include "lib/baselib/logging/version_record.h"
#include "lib/baselib/pool/parameter_pool.h"
#include "lib/baselib/pool/parameter_pool_read_write_change.h"

struct HISTORY_ENTRY {
    std::string name;
    std::string version;
    std::string date;
    std::string start_time;
    std::string end_time;
    int execution_time_s = 0;
};

/// The entry of a run. The execution time is at least 0, also when the clock was set back.
[[nodiscard]] HISTORY_ENTRY EntryOfRun(const VERSION_RECORD& version, std::time_t start, std::time_t end);

class SOFTWARE_HISTORY {
  public:
    /// Empty when the pool has no software_names.
    /// @throws CORRUPTED_PARAMETER_POOL for lists of different lengths; the pool's errors for a list that is missing
    void ReadFrom(PARAMETER_POOL& pool);
    /// Overwrites the first entry of this name, in its place, or appends.
    void Enter(const HISTORY_ENTRY& entry);
    /// The lists become pending changes of the pool.
    void WriteInto(PARAMETER_POOL_READ_WRITE_CHANGE& pool) const;

    [[nodiscard]] const std::vector<HISTORY_ENTRY>& Entries() const { return entries_; }

  private:
    std::vector<HISTORY_ENTRY> entries_;
};
