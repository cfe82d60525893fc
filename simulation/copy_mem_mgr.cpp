#include "simulation/copy_mem_mgr.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <vector>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/image/product_rows.h"
#include "lib/baselib/logging/logging.h"
#include "simulation/threads.h"

namespace {

constexpr long long kPixelBytes = 4;

bool Holds(const MEM_MGR& image, long long columns, long long first_row, long long last_row) {
    return image.FirstColumn() <= 0 && image.LastColumn() >= columns - 1 && image.FirstRow() <= first_row &&
           image.LastRow() >= last_row;
}

void CheckArgument(const COPY_MEM_MGR_ARG& argument) {
    const MEM_MGR& source = *argument.source;
    const MEM_MGR& destination = *argument.destination;
    if (source.PixelType() != destination.PixelType() || source.BytesPerPixel() != kPixelBytes) {
        LogAndThrow<ERROR_NOT_SUPPORTED_PIXEL_TYPE>("pixels of type \"%s\" can not be copied to \"%s\"",
                                                    source.DataType().Text().c_str(),
                                                    destination.DataType().Text().c_str());
    }
    const long long first_row = argument.start;
    const long long last_row = first_row + argument.length - 1;
    const long long columns = destination.Columns();
    if (!Holds(source, columns, first_row, last_row)) {
        LogAndThrow<ERROR_ARGUMENT>("columns 0..%lld of rows %lld..%lld are not in the image", columns - 1, first_row,
                                    last_row);
    }
}

void CopyBands(const COPY_MEM_MGR_ARG& argument) {
    CheckArgument(argument);
    MEM_MGR& band = *argument.destination;
    const auto row_bytes = static_cast<std::size_t>(band.Columns() * kPixelBytes);
    const long long end = static_cast<long long>(argument.start) + argument.length;
    for (long long first = argument.start; first < end; first += band.Rows()) {
        const long long rows = std::min(band.Rows(), end - first);
        for (long long i = 0; i < rows; ++i)
            std::memcpy(band.PixelAddress(0, i), argument.source->PixelAddress(0, first + i), row_bytes);
        argument.file->WriteRows(argument.file_row + first, rows, band.Data());
    }
}

}  // namespace

void CopyMemMgrThread(COPY_MEM_MGR_ARG* argument) {
    Log().Message(LOGGING_LEVEL::TRACE, "   - thread nr: %d  start: %d  length: %d",
                  static_cast<int>(argument->thread_number), static_cast<int>(argument->start),
                  static_cast<int>(argument->length));
    try {
        CopyBands(*argument);
    } catch (...) {
        argument->file->Abandon();  // others may wait for these rows
        throw;
    }
    Log().Message(LOGGING_LEVEL::TRACE, "   - end of thread nr: %d", static_cast<int>(argument->thread_number));
}

void CopyMemMgr(const MEM_MGR& source, long long columns, long long rows, PRODUCT_FILE& file, long long file_row) {
    if (rows > std::numeric_limits<std::uint32_t>::max()) {
        LogAndThrow<ERROR_ARGUMENT>("an image of %lld rows has too many to be copied", rows);
    }
    std::vector<MEM_MGR> bands;  // before the runner, whose destructor joins the threads that a failure left running
    THREADS<COPY_MEM_MGR_ARG, unsigned int> threads(0, static_cast<unsigned>(rows), CopyMemMgrThread);
    bands.resize(static_cast<std::size_t>(threads.Count()));
    const long long band_rows = std::max(kProductBufferBytes / std::max(columns * kPixelBytes, 1LL), 1LL);
    for (int i = 0; i < threads.Count(); ++i) {
        bands[i].Allocate(0, 0, columns - 1, band_rows - 1, source.PixelType());
        COPY_MEM_MGR_ARG& argument = threads.Arguments()[i];
        argument.source = &source;
        argument.destination = &bands[i];
        argument.file = &file;
        argument.file_row = file_row;
    }
    threads.Run();
}
