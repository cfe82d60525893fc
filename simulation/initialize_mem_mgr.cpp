#include "simulation/initialize_mem_mgr.h"

#include <bit>
#include <cstring>
#include <limits>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/logging/logging.h"
#include "simulation/threads.h"

namespace {

constexpr long long kWordBytes = sizeof(std::uint32_t);
constexpr std::size_t kVectorBytes = 32;

/// Single words up to the first 32-byte boundary, then 32 bytes at a time, then the rest.
/// The pixels are of another type than the pattern: memcpy is what may write both; it compiles to plain stores.
void FillWords(std::byte* at, long long words, std::uint32_t pattern) {
    while (words > 0 && reinterpret_cast<std::uintptr_t>(at) % kVectorBytes != 0) {
        std::memcpy(at, &pattern, kWordBytes);
        at += kWordBytes;
        --words;
    }
    const std::uint32_t vector[] = {pattern, pattern, pattern, pattern, pattern, pattern, pattern, pattern};
    static_assert(sizeof vector == kVectorBytes);
    for (; words >= 8; words -= 8, at += kVectorBytes) std::memcpy(at, vector, kVectorBytes);
    for (; words > 0; --words, at += kWordBytes) std::memcpy(at, &pattern, kWordBytes);
}

void CheckArgument(const INITIALIZE_MEM_MGR_ARG& argument) {
    const MEM_MGR& image = *argument.image;
    if (image.BytesPerPixel() == 0 || image.BytesPerPixel() % kWordBytes != 0) {
        LogAndThrow<ERROR_NOT_SUPPORTED_PIXEL_TYPE>("pixels of type \"%s\" can not be filled with a 32-bit value",
                                                    image.DataType().Text().c_str());
    }
    if (static_cast<long long>(argument.start) + argument.length > image.Rows()) {
        LogAndThrow<ERROR_ARGUMENT>("rows %u + %u to be filled exceed the %lld rows of the image", argument.start,
                                    argument.length, image.Rows());
    }
}

}  // namespace

void InitializeMemMgrThread(INITIALIZE_MEM_MGR_ARG* argument) {
    Log().Message(LOGGING_LEVEL::TRACE, "   - thread nr: %d  start: %d  length: %d",
                  static_cast<int>(argument->thread_number), static_cast<int>(argument->start),
                  static_cast<int>(argument->length));
    CheckArgument(*argument);
    MEM_MGR& image = *argument->image;
    const long long words = image.Columns() * (image.BytesPerPixel() / kWordBytes);
    for (std::uint32_t i = 0; i < argument->length && words > 0; ++i) {
        const long long row = image.FirstRow() + argument->start + i;
        FillWords(image.PixelAddress(image.FirstColumn(), row), words, argument->pattern);
    }
    Log().Message(LOGGING_LEVEL::TRACE, "   - end of thread nr: %d", static_cast<int>(argument->thread_number));
}

void InitializeMemMgr(MEM_MGR& image, std::uint32_t pattern) {
    if (image.Rows() > std::numeric_limits<std::uint32_t>::max()) {
        LogAndThrow<ERROR_ARGUMENT>("an image of %lld rows has too many to be filled", image.Rows());
    }
    THREADS<INITIALIZE_MEM_MGR_ARG, unsigned int> threads(0, static_cast<unsigned>(image.Rows()),
                                                          InitializeMemMgrThread);
    for (INITIALIZE_MEM_MGR_ARG& argument : threads.Arguments()) {
        argument.image = &image;
        argument.pattern = pattern;
    }
    threads.Run();
}

void InitializeMemMgr(MEM_MGR& image, float value) {
    InitializeMemMgr(image, std::bit_cast<std::uint32_t>(value));
}
