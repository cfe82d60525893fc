#include "companions/results.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "companions/companion_error.h"

namespace {

FILE* results = nullptr;

FILE* Stream() {
    return results == nullptr ? stdout : results;
}

/// A caller may close the standard streams: their numbers would then go to the next files opened.
void OccupyStandardDescriptors() {
    int descriptor = open("/dev/null", O_RDWR);
    while (descriptor >= 0 && descriptor <= STDERR_FILENO) descriptor = open("/dev/null", O_RDWR);
    close(descriptor);
}

}  // namespace

void SeparateResultsFromMessages() {
    OccupyStandardDescriptors();
    const int copy = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    results = copy < 0 ? nullptr : fdopen(copy, "w");
    if (results != nullptr) dup2(STDERR_FILENO, STDOUT_FILENO);
}

void PrintResult(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::vfprintf(Stream(), format, arguments);
    va_end(arguments);
}

void PrintResultText(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), Stream());
}

void FlushResults() {
    if (std::fflush(Stream()) != 0 || std::ferror(Stream()) != 0)
        throw COMPANION_ERROR(std::string("standard output: can not write: ") + std::strerror(errno));
}
