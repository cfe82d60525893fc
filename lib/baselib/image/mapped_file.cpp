#include "lib/baselib/image/mapped_file.h"

#include <array>
#include <atomic>
#include <functional>

#include "lib/baselib/logging/log_texts.h"

namespace {

constexpr std::size_t kMostMappedFiles = 16;  // the program maps one

std::array<std::atomic<const MAPPED_FILE*>, kMostMappedFiles> mapped{};
static_assert(std::atomic<const MAPPED_FILE*>::is_always_lock_free);

}  // namespace

MAPPED_FILE::MAPPED_FILE(const std::string& path, const void* start, std::size_t bytes)
    : path_(path),
      text_(Printable(path) + ": the file can not be read where it is mapped: it was cut, or its disk fails"),
      start_(static_cast<const std::byte*>(start)),
      bytes_(bytes) {
    for (auto& place : mapped) {
        const MAPPED_FILE* none = nullptr;
        if (place.compare_exchange_strong(none, this)) return;
    }
}

MAPPED_FILE::~MAPPED_FILE() {
    for (auto& place : mapped) {
        const MAPPED_FILE* it = this;
        place.compare_exchange_strong(it, nullptr);
    }
}

bool MAPPED_FILE::Holds(const void* address) const noexcept {
    const auto* const at = static_cast<const std::byte*>(address);
    return !std::less<>()(at, start_) && std::less<>()(at, start_ + bytes_);
}

const char* BusErrorText(const void* address) noexcept {
    for (const auto& place : mapped) {
        const MAPPED_FILE* const file = place;
        if (file != nullptr && file->Holds(address)) return file->Text();
    }
    return nullptr;
}
