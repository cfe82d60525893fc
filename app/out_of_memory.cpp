#include "app/out_of_memory.h"

#include <atomic>
#include <new>

#include "lib/baselib/logging/logging.h"

namespace {

std::atomic<const char*> line_of_step{"out of memory at the start of the run"};
std::atomic_flag told;

[[noreturn]] void TellAndThrow() {
    if (!told.test_and_set()) LOGGING::EmergencyLine(LOGGING_LEVEL::ALARM, line_of_step);
    throw std::bad_alloc();
}

}  // namespace

void ReportOutOfMemory() noexcept {
    std::set_new_handler(TellAndThrow);
}

void SetOutOfMemoryLine(const char* line) noexcept {
    line_of_step = line;
}
