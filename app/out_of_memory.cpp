#include "app/out_of_memory.h"

#include <atomic>
#include <new>

#include "lib/baselib/logging/logging.h"

namespace {

std::atomic<const char*> line_of_step{"out of memory at the start of the run"};
std::atomic<const char*> told{nullptr};

[[noreturn]] void TellAndThrow() {
    const char* nothing = nullptr;
    const char* const line = line_of_step;
    if (told.compare_exchange_strong(nothing, line)) LOGGING::EmergencyLine(LOGGING_LEVEL::ALARM, line);
    throw std::bad_alloc();
}

}  // namespace

void ReportOutOfMemory() noexcept {
    std::set_new_handler(TellAndThrow);
}

void SetOutOfMemoryLine(const char* line) noexcept {
    line_of_step = line;
}

const char* OutOfMemoryLine() noexcept {
    return told;
}
