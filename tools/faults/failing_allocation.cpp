/// \file failing_allocation.cpp
/// LD_PRELOAD library: the allocation number FAIL_ALLOCATION of the process fails ("7"), or all from there on ("7+").
/// At the end the number of allocations is written into the file COUNT_ALLOCATIONS, when that is given.

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* old, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
}

namespace {

std::atomic<long> count{0};
long first = -1;
bool for_good = false;

bool Fails() {
    const long number = ++count;
    if (first < 0 || number < first || (!for_good && number > first)) return false;
    errno = ENOMEM;
    return true;
}

__attribute__((constructor)) void ReadEnvironment() {
    const char* const text = std::getenv("FAIL_ALLOCATION");
    if (text == nullptr) return;
    for_good = std::strchr(text, '+') != nullptr;
    first = count + std::atol(text);
}

__attribute__((destructor)) void WriteCount() {
    const char* const path = std::getenv("COUNT_ALLOCATIONS");
    std::FILE* const file = path == nullptr ? nullptr : std::fopen(path, "w");
    if (file == nullptr) return;
    std::fprintf(file, "%ld", count.load());
    std::fclose(file);
}

}  // namespace

extern "C" {
void* malloc(size_t size) noexcept {
    return Fails() ? nullptr : __libc_malloc(size);
}
void* calloc(size_t elements, size_t size) noexcept {
    return Fails() ? nullptr : __libc_calloc(elements, size);
}
void* realloc(void* old, size_t size) noexcept {
    return Fails() ? nullptr : __libc_realloc(old, size);
}
void* memalign(size_t alignment, size_t size) noexcept {
    return Fails() ? nullptr : __libc_memalign(alignment, size);
}
void* aligned_alloc(size_t alignment, size_t size) noexcept {
    return memalign(alignment, size);
}
int posix_memalign(void** result, size_t alignment, size_t size) noexcept {
    void* const block = memalign(alignment, size);
    if (block == nullptr) return ENOMEM;
    *result = block;
    return 0;
}
}
