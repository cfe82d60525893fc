#include "simulation/copy_mem_mgr.h"

#include <cstring>
#include <limits>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"
#include "simulation/threads.h"

namespace {

constexpr int kPixelBytes = 4;

bool Holds(const MEM_MGR& image, long long columns, long long first_row, long long last_row) {
    return image.FirstColumn() <= 0 && image.LastColumn() >= columns - 1 && image.FirstRow() <= first_row &&
           image.LastRow() >= last_row;
}

void CheckArgument(const COPY_MEM_MGR_ARG& argument) {
    const MEM_MGR& source = *argument.source;
    const MEM_MGR& destination = *argument.destination;
    if (source.PixelType() != destination.PixelType() || source.BytesPerPixel() != kPixelBytes) {
        Log().Message(LOGGING_LEVEL::ALARM, "pixels of type \"%s\" can not be copied to \"%s\"",
                      source.DataType().Text().c_str(), destination.DataType().Text().c_str());
        throw ERROR_NOT_SUPPORTED_PIXEL_TYPE();
    }
    const long long first_row = argument.start;
    const long long last_row = first_row + argument.length - 1;
    const long long columns = destination.Columns();
    if (!Holds(source, columns, first_row, last_row) || !Holds(destination, columns, first_row, last_row)) {
        Log().Message(LOGGING_LEVEL::ALARM, "columns 0..%lld of rows %lld..%lld are not in both images", columns - 1,
                      first_row, last_row);
        throw ERROR_ARGUMENT();
    }
}

}  // namespace

void CopyMemMgrThread(COPY_MEM_MGR_ARG* argument) {
    Log().Message(LOGGING_LEVEL::TRACE, "   - thread nr: %d  start: %d  length: %d",
                  static_cast<int>(argument->thread_number), static_cast<int>(argument->start),
                  static_cast<int>(argument->length));
    CheckArgument(*argument);
    const long long row_bytes = argument->destination->Columns() * kPixelBytes;
    for (long long i = 0; i < argument->length && row_bytes > 0; ++i) {
        const long long row = argument->start + i;
        std::memcpy(argument->destination->PixelAddress(0, row), argument->source->PixelAddress(0, row),
                    static_cast<std::size_t>(row_bytes));
    }
    Log().Message(LOGGING_LEVEL::TRACE, "   - end of thread nr: %d", static_cast<int>(argument->thread_number));
}

void CopyMemMgr(const MEM_MGR& source, MEM_MGR& destination) {
    if (destination.Rows() > std::numeric_limits<std::uint32_t>::max()) {
        Log().Message(LOGGING_LEVEL::ALARM, "an image of %lld rows has too many to be copied", destination.Rows());
        throw ERROR_ARGUMENT();
    }
    THREADS<COPY_MEM_MGR_ARG, unsigned int> threads(0, static_cast<unsigned>(destination.Rows()), CopyMemMgrThread);
    for (COPY_MEM_MGR_ARG& argument : threads.Arguments()) {
        argument.source = &source;
        argument.destination = &destination;
    }
    threads.Run();
}
