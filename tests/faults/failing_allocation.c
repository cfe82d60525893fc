/* LD_PRELOAD shim: the allocation number FAIL_ALLOCATION of the process fails ("7"), or all from there on ("7+"). At the
 * end the number of allocations is written to the file COUNT_ALLOCATIONS, when that is given. */
#define _GNU_SOURCE
#include <errno.h>
#include <stdatomic.h>
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

extern void* __libc_malloc(size_t);
extern void* __libc_calloc(size_t, size_t);
extern void* __libc_realloc(void*, size_t);
extern void* __libc_memalign(size_t, size_t);

static atomic_long count;
static long first = -1;
static int for_good;

__attribute__((constructor)) static void read_environment(void) {
    const char* text = getenv("FAIL_ALLOCATION");
    if (text == NULL) return;
    for_good = strchr(text, '+') != NULL;
    first = atol(text);
    count = 0;
}

__attribute__((destructor)) static void write_count(void) {
    const char* path = getenv("COUNT_ALLOCATIONS");
    FILE* file = path == NULL ? NULL : fopen(path, "w");
    if (file == NULL) return;
    fprintf(file, "%ld", (long)count);
    fclose(file);
}

static int fails(void) {
    const long number = ++count;
    if (first < 0 || number < first || (!for_good && number > first)) return 0;
    errno = ENOMEM;
    return 1;
}

void* malloc(size_t size) { return fails() ? NULL : __libc_malloc(size); }
void* calloc(size_t n, size_t size) { return fails() ? NULL : __libc_calloc(n, size); }
void* realloc(void* old, size_t size) { return fails() ? NULL : __libc_realloc(old, size); }
void* memalign(size_t alignment, size_t size) { return fails() ? NULL : __libc_memalign(alignment, size); }
void* aligned_alloc(size_t alignment, size_t size) { return memalign(alignment, size); }
int posix_memalign(void** result, size_t alignment, size_t size) {
    void* const block = memalign(alignment, size);
    if (block == NULL) return ENOMEM;
    *result = block;
    return 0;
}
