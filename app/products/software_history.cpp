#include "app/products/software_history.h"

#include <algorithm>
#include <climits>

#include "lib/baselib/containers/array.h"
#include "lib/baselib/containers/string.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/logging/log_texts.h"
#include "lib/baselib/pool/pool_errors.h"

namespace {

/// The lists of texts and where their elements stand in an entry.
struct TEXT_LIST {
    const char* key;
    std::string HISTORY_ENTRY::*member;
};
constexpr TEXT_LIST kTextLists[] = {
    {"software_names", &HISTORY_ENTRY::name},         {"software_versions", &HISTORY_ENTRY::version},
    {"software_dates", &HISTORY_ENTRY::date},         {"software_start_times", &HISTORY_ENTRY::start_time},
    {"software_end_times", &HISTORY_ENTRY::end_time},
};
constexpr const char* kNames = "software_names";
constexpr const char* kExecutionTimes = "software_execution_times";

/// The elements of a list, whatever the first index with which another program wrote it.
template <class T>
std::vector<T> ReadList(PARAMETER_POOL& pool, const char* key) {
    ARRAY<T> list;
    pool.Get(key, list);
    return std::vector<T>(list.begin(), list.end());
}

void RequireLength(const PARAMETER_POOL& pool, const char* key, size_t length, size_t names) {
    if (length == names) return;
    LogAndThrow<CORRUPTED_PARAMETER_POOL>("%s: key \"%s\": %zu elements, but \"%s\" has %zu", pool.FileName().c_str(),
                                          key, length, kNames, names);
}

}  // namespace

HISTORY_ENTRY EntryOfRun(const VERSION_RECORD& version, std::time_t start, std::time_t end) {
    const long long duration_s = std::clamp<long long>(end - start, 0, INT_MAX);
    return {version.program_name,  version.version,     version.revision_date,
            LocalTimeStamp(start), LocalTimeStamp(end), static_cast<int>(duration_s)};
}

void SOFTWARE_HISTORY::ReadFrom(PARAMETER_POOL& pool) {
    entries_.clear();
    if (!pool.FindKey(kNames)) return;
    std::vector<HISTORY_ENTRY> entries(ReadList<STRING>(pool, kNames).size());
    for (const TEXT_LIST& list : kTextLists) {
        const std::vector<STRING> texts = ReadList<STRING>(pool, list.key);
        RequireLength(pool, list.key, texts.size(), entries.size());
        for (size_t i = 0; i < entries.size(); ++i) entries[i].*list.member = texts[i].ToStd();
    }
    const std::vector<int> times = ReadList<int>(pool, kExecutionTimes);
    RequireLength(pool, kExecutionTimes, times.size(), entries.size());
    for (size_t i = 0; i < entries.size(); ++i) entries[i].execution_time_s = times[i];
    entries_ = std::move(entries);
}

void SOFTWARE_HISTORY::Enter(const HISTORY_ENTRY& entry) {
    const auto present = std::find_if(entries_.begin(), entries_.end(),
                                      [&entry](const HISTORY_ENTRY& other) { return other.name == entry.name; });
    if (present == entries_.end())
        entries_.push_back(entry);
    else
        *present = entry;
}

void SOFTWARE_HISTORY::WriteInto(PARAMETER_POOL_READ_WRITE_CHANGE& pool) const {
    const int count = static_cast<int>(entries_.size());
    for (const TEXT_LIST& list : kTextLists) {
        ARRAY<STRING> texts(0, count);
        for (int i = 0; i < count; ++i) texts[i] = STRING(entries_[static_cast<size_t>(i)].*list.member);
        pool.Change(list.key, texts);
    }
    ARRAY<int> times(0, count);
    for (int i = 0; i < count; ++i) times[i] = entries_[static_cast<size_t>(i)].execution_time_s;
    pool.Change(kExecutionTimes, times);
}
