/// \file failing_calls.cpp
/// LD_PRELOAD library: one system call of the program fails, or the process is killed at it. Without a tracer that
/// stops the process at every call a run costs a hundredth of the switches between processes.
///
/// FAIL_CALL="rename 28 3"   the third rename() fails with errno 28; "3+": all from there on
/// FAIL_CALL="change kill 7" SIGKILL at the seventh call that changes a file's content, name or mode; not at log lines
/// SLOW_TRUNCATION=1        a file that was cut stays so for 0.3 s: who works on it at the same time meets it
/// LIST_CALLS=PATH           one line per call: its name and its file
///
/// Known are the calls that the program makes by its own name for them; what the C library calls within (getdents64 of
/// readdir, mmap of malloc, clone3) is not seen here.

#undef _FORTIFY_SOURCE  // its headers define some of these functions themselves

#include <dlfcn.h>
#include <sys/syscall.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

extern "C" long syscall(long number, ...) noexcept;

namespace {

constexpr int kCurrentFolder = -100;  // AT_FDCWD
constexpr int kCreate = 0100;         // O_CREAT
constexpr int kMode = 020000100;      // O_CREAT or O_TMPFILE: there is a third argument

char failing[32] = "";
int error_number = 0;  ///< 0: SIGKILL
long first = 0;
bool for_good = false;
bool slow = false;
long list = -1;
std::atomic<long> count{0};

__attribute__((constructor)) void ReadEnvironment() {
    char error[16] = "";
    char number[16] = "";
    const char* const text = std::getenv("FAIL_CALL");
    if (text != nullptr && std::sscanf(text, "%31s %15s %15s", failing, error, number) == 3) {
        error_number = std::atoi(error);
        first = std::atol(number);
        for_good = std::strchr(number, '+') != nullptr;
    }
    slow = std::getenv("SLOW_TRUNCATION") != nullptr;
    const char* const path = std::getenv("LIST_CALLS");
    if (path != nullptr) list = syscall(SYS_openat, kCurrentFolder, path, 02002101, 0666);  // write, create, append
}

void Pause() {
    const timespec time = {0, 300'000'000};
    const int before = errno;
    nanosleep(&time, nullptr);
    errno = before;
}

void Link(int descriptor, char (&path)[512]) {
    char link[40];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
    const long length = syscall(SYS_readlinkat, kCurrentFolder, link, path, sizeof path - 1);
    path[length < 0 ? 0 : length] = '\0';
}

bool IsLog(int descriptor) {
    char path[512];
    Link(descriptor, path);
    return std::strstr(path, "/log.") != nullptr;
}

/// @param path  null: that of the descriptor
void List(const char* name, const char* path, int descriptor) {
    if (list < 0) return;
    const int before = errno;
    char linked[512];
    char line[600];
    if (path == nullptr) Link(descriptor, linked);
    const int length = std::snprintf(line, sizeof line, "%s %s\n", name, path == nullptr ? linked : path);
    syscall(SYS_write, list, line, length);
    errno = before;
}

bool Reaches() {
    const long number = ++count;
    return number == first || (for_good && number > first);
}

/// @return whether the call is to fail, errno set
bool Fails(const char* name, const char* path, int descriptor = -1) {
    List(name, path, descriptor);
    if (std::strcmp(name, failing) != 0 || !Reaches()) return false;
    errno = error_number;
    return true;
}

/// At a call that changes files: the process may end here.
void Changes(const char* path, int descriptor = -1) {
    List("change", path, descriptor);
    if (std::strcmp(failing, "change") == 0 && Reaches()) std::raise(SIGKILL);
}

template <class... ARGUMENTS>
int Number(long number, ARGUMENTS... arguments) {
    return static_cast<int>(syscall(number, arguments...));
}

int Open(int folder, const char* path, int flags, va_list rest) {
    const int mode = (flags & kMode) != 0 ? va_arg(rest, int) : 0;
    if ((flags & kCreate) != 0) Changes(path);
    return Fails("openat", path) ? -1 : Number(SYS_openat, folder, path, flags, mode);
}

template <class FUNCTION>
FUNCTION Real(const char* name) {
    return reinterpret_cast<FUNCTION>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const int result = Open(kCurrentFolder, path, flags, rest);
    va_end(rest);
    return result;
}
int openat(int folder, const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const int result = Open(folder, path, flags, rest);
    va_end(rest);
    return result;
}
int mkostemp(char* name, int flags) {
    Changes("temporary");
    return Fails("openat", "temporary") ? -1 : Real<int (*)(char*, int)>("mkostemp")(name, flags);
}
void* opendir(const char* path) {
    return Fails("openat", path) ? nullptr : Real<void* (*)(const char*)>("opendir")(path);
}
int close(int file) {
    const bool fails = Fails("close", nullptr, file);
    const int before = errno;
    const int result = Number(SYS_close, file);  // as a failing one does
    if (fails) errno = before;
    return fails ? -1 : result;
}
long read(int file, void* data, size_t size) {
    return Fails("read", nullptr, file) ? -1 : syscall(SYS_read, file, data, size);
}
long pread(int file, void* data, size_t size, long offset) {
    return Fails("pread64", nullptr, file) ? -1 : syscall(SYS_pread64, file, data, size, offset);
}
long write(int file, const void* data, size_t size) {
    if (!IsLog(file)) Changes(nullptr, file);
    return Fails("write", nullptr, file) ? -1 : syscall(SYS_write, file, data, size);
}
long pwrite(int file, const void* data, size_t size, long offset) {
    Changes(nullptr, file);
    return Fails("pwrite64", nullptr, file) ? -1 : syscall(SYS_pwrite64, file, data, size, offset);
}
long pwritev(int file, const void* parts, int parts_count, long offset) {
    Changes(nullptr, file);
    return Fails("pwritev", nullptr, file) ? -1 : syscall(SYS_pwritev, file, parts, parts_count, offset, 0L);
}
int fsync(int file) {
    return Fails("fsync", nullptr, file) ? -1 : Number(SYS_fsync, file);
}
int ftruncate(int file, long size) noexcept {
    Changes(nullptr, file);
    const int result = Fails("ftruncate", nullptr, file) ? -1 : Number(SYS_ftruncate, file, size);
    if (slow) Pause();
    return result;
}
int fallocate(int file, int mode, long offset, long size) {
    Changes(nullptr, file);
    return Fails("fallocate", nullptr, file) ? -1 : Number(SYS_fallocate, file, mode, offset, size);
}
int fchmod(int file, unsigned mode) noexcept {
    Changes(nullptr, file);
    return Fails("fchmod", nullptr, file) ? -1 : Number(SYS_fchmod, file, mode);
}
int rename(const char* from, const char* to) noexcept {
    Changes(to);
    return Fails("rename", to) ? -1 : Number(SYS_rename, from, to);
}
int link(const char* from, const char* to) noexcept {
    Changes(to);
    return Fails("link", from) ? -1 : Number(SYS_link, from, to);
}
int unlink(const char* path) noexcept {
    Changes(path);
    return Fails("unlink", path) ? -1 : Number(SYS_unlink, path);
}
int flock(int file, int operation) noexcept {
    return Fails("flock", nullptr, file) ? -1 : Number(SYS_flock, file, operation);
}
int stat(const char* path, void* status) noexcept {
    return Fails("newfstatat", path) ? -1 : Number(SYS_newfstatat, kCurrentFolder, path, status, 0);
}
int lstat(const char* path, void* status) noexcept {
    return Fails("newfstatat", path) ? -1 : Number(SYS_newfstatat, kCurrentFolder, path, status, 0x100);
}
int fstat(int file, void* status) noexcept {
    return Fails("newfstatat", nullptr, file) ? -1 : Number(SYS_fstat, file, status);
}
int fstatat(int folder, const char* path, void* status, int flags) noexcept {
    return Fails("newfstatat", path) ? -1 : Number(SYS_newfstatat, folder, path, status, flags);
}
int access(const char* path, int mode) noexcept {
    return Fails("faccessat", path) ? -1 : Number(SYS_faccessat, kCurrentFolder, path, mode);
}
}
