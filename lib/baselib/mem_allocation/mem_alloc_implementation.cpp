#include "lib/baselib/mem_allocation/mem_alloc_implementation.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

namespace MEM_ALLOCATION {
namespace {

// Holds in every build, not only where <cassert> is switched on: code that relies on the alignment would else go on
// with undefined behaviour.
void AssertAligned(const void* elements) {
    const auto ptr_data = reinterpret_cast<std::uintptr_t>(elements);
    if ((ptr_data % kAlignment) == 0) return;
    std::fprintf(stderr,
                 "lib/baselib/mem_allocation/mem_alloc_implementation: Assertion `(ptr_data %% 32 ) == 0' failed.\n");
    std::abort();
}

char* BlockOf(void* elements) {
    return static_cast<char*>(elements) - kAlignment;
}

}  // namespace

void TellNewHandler() noexcept {
    const std::new_handler handler = std::get_new_handler();
    try {
        if (handler != nullptr) handler();
    } catch (const std::bad_alloc&) {  // the caller gets a null pointer
    }
}

void* AllocateBlock(long long count, std::size_t element_size) noexcept {
    constexpr auto kMaxBytes = static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max());
    if (count < 0) return nullptr;
    if (element_size != 0 && static_cast<std::size_t>(count) > (kMaxBytes - kAlignment) / element_size) return nullptr;
    void* block = nullptr;
    if (posix_memalign(&block, kAlignment, kAlignment + static_cast<std::size_t>(count) * element_size) != 0) {
        TellNewHandler();
        return nullptr;
    }
    std::memset(block, 0, kAlignment);
    std::memcpy(block, &count, sizeof count);
    void* const elements = static_cast<char*>(block) + kAlignment;
    AssertAligned(elements);
    return elements;
}

void FreeBlock(void* elements) noexcept {
    if (elements != nullptr) std::free(BlockOf(elements));
}

long long BlockCount(const void* elements) noexcept {
    long long count = 0;
    std::memcpy(&count, static_cast<const char*>(elements) - kAlignment, sizeof count);
    return count;
}

}  // namespace MEM_ALLOCATION
