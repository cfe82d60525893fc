#include "simulation/thread_count.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <limits>

#include "lib/baselib/logging/logging.h"

namespace {

int CheckedCount(const char* text) {
    const long count = std::strtol(text, nullptr, 10);  // 0 when there is no number
    if (count >= 1) return static_cast<int>(std::min<long>(count, std::numeric_limits<int>::max()));
    static std::atomic_flag warned = ATOMIC_FLAG_INIT;
    if (!warned.test_and_set()) {
        Log().Message(LOGGING_LEVEL::WARNING, "PARALLEL: \"%s\" is no number from 1 on: one thread is used", text);
    }
    return 1;
}

}  // namespace

int ThreadCount() {
    if (const char* const text = std::getenv("PARALLEL"); text != nullptr) return CheckedCount(text);
    const long processors = sysconf(_SC_NPROCESSORS_ONLN);
    return static_cast<int>(std::max(processors, 1L));
}
