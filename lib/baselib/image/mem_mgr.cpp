#include "lib/baselib/image/mem_mgr.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/image/system_error_text.h"
#include "lib/baselib/logging/logging.h"

namespace {

constexpr long long kMaxAllocationBytes = std::numeric_limits<std::ptrdiff_t>::max();

/// Number of indices from first to last, both included.
/// @throws ERROR_ARGUMENT
long long Extent(long long first, long long last, const char* what) {
    long long extent = 0;
    if (__builtin_sub_overflow(last, first, &extent) || __builtin_add_overflow(extent, 1, &extent) || extent < 0) {
        LogAndThrow<ERROR_ARGUMENT>("MEM_MGR: no image has %s %lld to %lld", what, first, last);
    }
    return extent;
}

/// Where the element of index 0 would be when the first one has this index. That may lie outside the block, where C++
/// has no pointers: the step is done on addresses.
void* Origin(void* first, long long first_index, std::size_t element_bytes) {
    const std::uintptr_t address = reinterpret_cast<std::uintptr_t>(first);
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    return reinterpret_cast<void*>(address - static_cast<std::uintptr_t>(first_index) * element_bytes);
}

/// Large blocks come in pages of 2 MiB where the system has them: touching them for the first time then costs a tenth.
/// Nothing depends on it, hence no look at the result.
void AskForLargePages(void* memory, std::size_t bytes) {
    constexpr std::size_t kWorthwhile = std::size_t{4} << 20;
    if (bytes < kWorthwhile) return;
    const auto page = static_cast<std::size_t>(getpagesize());
    const std::size_t before = (page - reinterpret_cast<std::uintptr_t>(memory) % page) % page;
    madvise(static_cast<std::byte*>(memory) + before, (bytes - before) / page * page, MADV_HUGEPAGE);
}

/// Zeroed memory; large blocks cost nothing until they are touched.
std::byte* AllocatePixels(long long columns, long long rows, int bytes_per_pixel) {
    long long bytes = 0;
    if (__builtin_mul_overflow(columns, rows, &bytes) || __builtin_mul_overflow(bytes, bytes_per_pixel, &bytes) ||
        bytes > kMaxAllocationBytes - 1) {
        Log().Message(LOGGING_LEVEL::ALARM, "MEM_MGR: %lld x %lld pixels of %d bytes are more than memory can address",
                      columns, rows, bytes_per_pixel);
        throw std::bad_array_new_length();
    }
    void* const memory =
        std::calloc(static_cast<std::size_t>(bytes) + 1, 1);  // + 1: an image of 0 pixels has data, too
    if (memory == nullptr) {
        LogAndThrow<ERROR_NO_MEMORY>("MEM_MGR: no memory for an image of %lld x %lld pixels of %d bytes", columns, rows,
                                     bytes_per_pixel);
    }
    AskForLargePages(memory, static_cast<std::size_t>(bytes));
    return static_cast<std::byte*>(memory);
}

}  // namespace

MEM_MGR::MEM_MGR(const MEM_MGR& other) {
    *this = other;
}

MEM_MGR& MEM_MGR::operator=(const MEM_MGR& other) {
    if (this == &other) return *this;
    if (other.held_.storage == STORAGE_STATE::EMPTY) {
        Free();
        return *this;
    }
    Allocate(other.held_.first_corner.x, other.held_.first_corner.y, other.held_.last_corner.x,
             other.held_.last_corner.y, other.held_.pixel_type);
    std::memcpy(held_.pixels, other.held_.pixels, static_cast<std::size_t>(PixelBytes()));
    CopyColourMap(other.held_.colour_map);
    return *this;
}

MEM_MGR::MEM_MGR(MEM_MGR&& other) noexcept : held_(std::exchange(other.held_, HELD())) {}

MEM_MGR& MEM_MGR::operator=(MEM_MGR&& other) noexcept {
    if (this != &other) {
        Free();
        held_ = std::exchange(other.held_, HELD());
    }
    return *this;
}

// A destructor does not throw: the error of a damaged pixel type becomes std::terminate here, by intention.
MEM_MGR::~MEM_MGR() {
    try {
        Free();
    } catch (const std::bad_alloc&) {  // of its lines in the log: no reason to end a run whose products are complete
    }
}

void MEM_MGR::Allocate(long long first_column, long long first_row, long long last_column, long long last_row,
                       PIXEL_TYPE pixel_type) {
    Free();
    const PIXEL_TYPE_RECORD& type = KnownPixelType(pixel_type);
    const long long columns = Extent(first_column, last_column, "columns");
    const long long rows = Extent(first_row, last_row, "rows");
    held_.pixels = AllocatePixels(columns, rows, type.bytes);
    held_.first_corner = {first_column, first_row};
    held_.last_corner = {last_column, last_row};
    held_.data_size = columns * rows;
    held_.pixel_type = pixel_type;
    held_.data_type = BASIC::TYPES::DATA_TYPE(type.data_type);
    held_.bytes_per_pixel = type.bytes;
    held_.storage = STORAGE_STATE::IN_MEMORY;
}

void MEM_MGR::Free() {
    if (held_.row_table != nullptr) {
        Log() << LOGGING_LEVEL::TRACE << "MEM_MGR: delete num. rec. interface ..\n";
        KnownPixelType(held_.pixel_type);
        held_.row_table.reset();
    }
    if (held_.storage == STORAGE_STATE::MAPPED_FILE) {
        Unmap();
    } else if (held_.storage == STORAGE_STATE::IN_MEMORY) {
        Log() << LOGGING_LEVEL::TRACE << "MEM_MGR: delete image memory ..\n";
        KnownPixelType(held_.pixel_type);
        std::free(held_.pixels);
        held_.storage = STORAGE_STATE::EMPTY;
    }
    FreeColourMap();
    held_ = HELD();
}

void MEM_MGR::Unmap() {
    Log() << LOGGING_LEVEL::TRACE << "MEM_MGR: unmap file ..\n";
    held_.storage = STORAGE_STATE::EMPTY;
    const int result =
        munmap(held_.pixels - held_.header_size, static_cast<std::size_t>(held_.header_size + held_.data_size));
    close(held_.file_descriptor);
    if (result != 0) Log() << LOGGING_LEVEL::WARNING << "MEM_MGR: munmap error ..\n";
}

void MEM_MGR::Flush(int flags) const {
    if (held_.storage != STORAGE_STATE::MAPPED_FILE) return;
    if (msync(const_cast<std::byte*>(held_.pixels) - held_.header_size,
              static_cast<std::size_t>(held_.header_size + held_.data_size), flags) == 0) {
        return;
    }
    const int error = errno;
    Log() << LOGGING_LEVEL::ALARM << "MEM_MGR: msync error ..\n";
    Log() << LOGGING_LEVEL::ALARM << MsyncErrorText(error) << "\n";
    LogAndThrow<ERROR_CAN_NOT_MSYNC>("%s: %s", held_.mapped_file->Path().c_str(), std::strerror(error));
}

void MEM_MGR::Advise(long long chunk_pages) const {
    long long chunk_bytes = 0;
    if (chunk_pages < 1 || __builtin_mul_overflow(chunk_pages, getpagesize(), &chunk_bytes)) {
        LogAndThrow<ERROR_ARGUMENT>("MEM_MGR: an advice for chunks of %lld pages is not possible", chunk_pages);
    }
    Log() << LOGGING_LEVEL::DEBUG << "MEM_MGR: making " << (held_.header_size + held_.data_size) / chunk_bytes
          << " madvise calls\n";
    Log() << LOGGING_LEVEL::DEBUG << "MEM_MGR: madvise completed\n";
}

// --- colour map ---

void MEM_MGR::SetColourMap(const COLOUR_MAP& colour_map) {
    FreeColourMap();
    held_.colour_map = colour_map;
}

void MEM_MGR::CopyColourMap(const COLOUR_MAP& other) {
    if (other.red == nullptr || other.entries == 0) return;
    const auto entries = static_cast<std::size_t>(other.entries);
    auto* const storage = new unsigned char[3 * entries];
    std::memcpy(storage, other.red, entries);
    std::memcpy(storage + entries, other.green, entries);
    std::memcpy(storage + 2 * entries, other.blue, entries);
    SetColourMap({storage, storage + entries, storage + 2 * entries, other.entries, COLOUR_MAP_OWNER::ARRAY_DELETE});
}

void MEM_MGR::FreeColourMap() {
    if (held_.colour_map.owner == COLOUR_MAP_OWNER::ARRAY_DELETE) delete[] held_.colour_map.red;
    if (held_.colour_map.owner == COLOUR_MAP_OWNER::SYSTEM_FREE) std::free(held_.colour_map.red);
    held_.colour_map = COLOUR_MAP();
}

// --- row table ---

template <class T>
void MEM_MGR::BuildRowTable() {
    if (reinterpret_cast<std::uintptr_t>(held_.pixels) % alignof(T) != 0) {
        LogAndThrow<ERROR_IMAGE>("MEM_MGR: pixels of type \"%s\" can not start at byte %lld of a file",
                                 held_.data_type.Text().c_str(), held_.header_size);
    }
    const long long rows = Rows();
    void* const memory = std::calloc(static_cast<std::size_t>(rows) + 1, sizeof(T*));
    if (memory == nullptr) throw ERROR_NO_MEMORY();
    held_.row_table.reset(memory);
    for (long long i = 0; i < rows; ++i) {
        std::byte* const row = held_.pixels + i * Columns() * held_.bytes_per_pixel;
        new (static_cast<T**>(memory) + i) T*(static_cast<T*>(Origin(row, held_.first_corner.x, sizeof(T))));
    }
}

void* MEM_MGR::RowTable(PIXEL_TYPE requested) {
    if (held_.pixels == nullptr) {
        LogAndThrow<ERROR_MEMORY>("MEM_MGR: no memory allocated for GetNumRecMatrix()");
    }
    if (FindPixelType(held_.pixel_type) == nullptr) {
        LogAndThrow<ERROR_NOT_SUPPORTED_PIXEL_TYPE>("MEM_MGR: unknow pixeltype in memory");
    }
    if (requested != held_.pixel_type) {
        LogAndThrow<ERROR_NOT_SUPPORTED_PIXEL_TYPE>("MEM_MGR: the pixels are of type \"%s\", asked for as \"%s\"",
                                                    held_.data_type.Text().c_str(),
                                                    KnownPixelType(requested).data_type);
    }
    if (held_.row_table == nullptr) {
        switch (held_.pixel_type) {
            case PIXEL_TYPE::NONE:
                break;
            case PIXEL_TYPE::U_INT_8:
                BuildRowTable<std::uint8_t>();
                break;
            case PIXEL_TYPE::INT_16:
                BuildRowTable<std::int16_t>();
                break;
            case PIXEL_TYPE::INT_32:
                BuildRowTable<std::int32_t>();
                break;
            case PIXEL_TYPE::FLT_2:
                BuildRowTable<FLT_2_BITS>();
                break;
            case PIXEL_TYPE::FLT_6:
                BuildRowTable<float>();
                break;
            case PIXEL_TYPE::FLT_15:
                BuildRowTable<double>();
                break;
            case PIXEL_TYPE::C_U_INT_8:
                BuildRowTable<COMPLEX<std::uint8_t>>();
                break;
            case PIXEL_TYPE::C_INT_16:
                BuildRowTable<COMPLEX<std::int16_t>>();
                break;
            case PIXEL_TYPE::C_FLT_2:
                BuildRowTable<COMPLEX<FLT_2_BITS>>();
                break;
            case PIXEL_TYPE::C_FLT_6:
                BuildRowTable<COMPLEX<float>>();
                break;
            case PIXEL_TYPE::C_FLT_15:
                BuildRowTable<COMPLEX<double>>();
                break;
            case PIXEL_TYPE::RGB:
                BuildRowTable<RGB_PIXEL>();
                break;
        }
    }
    return Origin(held_.row_table.get(), held_.first_corner.y, sizeof(void*));
}
