/// \file mem_mgr.h
/// One two-dimensional image of pixels of one type, in main memory or in a raster file mapped into memory.
/// Corners are inclusive pixel indices (column, row) of the image's own coordinates; they may be negative. The pixels
/// lie row after row, top row first, without padding. Sizes are 64-bit throughout. Threads: no locks. Workers may write
/// disjoint pixels at the same time; everything else (allocating, mapping, building the row table, flushing, freeing)
/// belongs to one thread, before or after the workers. Errors: the reason is logged at ALARM, with the path where there
/// is one, then the exception is thrown.

#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <string>

#include "lib/baselib/containers/records.h"
#include "lib/baselib/image/data_type.h"
#include "lib/baselib/image/mapped_file.h"
#include "lib/baselib/image/pixel_type.h"

enum class ACCESS_MODE : int { READ_ONLY = 0, WRITE_ONLY = 1, READ_WRITE = 2 };

enum class STORAGE_STATE : int { EMPTY = 0, MAPPED_FILE = 1, IN_MEMORY = 2 };

enum class COLOUR_MAP_OWNER : int {
    ARRAY_DELETE = 0,  ///< one block from new unsigned char[], which starts at red
    SYSTEM_FREE = 1,   ///< one block from malloc, which starts at red
    NOT_OWNED = 2      ///< lies inside the mapping
};

struct COLOUR_MAP {
    unsigned char* red = nullptr;
    unsigned char* green = nullptr;
    unsigned char* blue = nullptr;
    long long entries = 0;  ///< of each of the three parts
    COLOUR_MAP_OWNER owner = COLOUR_MAP_OWNER::NOT_OWNED;
};

class MEM_MGR {
  public:
    /// An empty image: no pixels, data type "others".
    MEM_MGR() = default;
    /// Copies pixels and colour map into memory of its own, whatever the other's storage is.
    MEM_MGR(const MEM_MGR& other);
    MEM_MGR& operator=(const MEM_MGR& other);
    MEM_MGR(MEM_MGR&& other) noexcept;
    MEM_MGR& operator=(MEM_MGR&& other) noexcept;
    /// As Free(). An image whose pixel type is damaged ends the program here.
    ~MEM_MGR();

    /// A new image in memory; its pixels are zero. What was held before is freed. Last = first - 1 gives 0 columns
    /// (rows).
    /// @throws ERROR_ARGUMENT when a last corner lies further before the first, std::bad_array_new_length when the
    /// pixel
    ///         bytes exceed an allocation size, ERROR_NO_MEMORY, ERROR_NOT_SUPPORTED_PIXEL_TYPE
    void Allocate(long long first_column, long long first_row, long long last_column, long long last_row,
                  PIXEL_TYPE pixel_type);

    /// Maps a raster file; columns 0 to width - 1, rows 0 to height - 1. Of the header only width, height and map
    /// length are looked at: magic, depth, length and type words may hold anything. A file that is shorter than that
    /// promises is refused, for an access beyond its end would be a bus error. A WRITE_ONLY file can never be mapped:
    /// its header is not readable.
    /// @throws ERROR_CAN_NOT_OPEN_FILE, ERROR_CAN_NOT_READ_FILE (no whole header), ERROR_IMAGE (too short),
    ///         ERROR_CAN_NOT_MMAP, ERROR_NOT_SUPPORTED_PIXEL_TYPE
    void MapFile(const std::string& path, ACCESS_MODE mode, PIXEL_TYPE pixel_type);

    /// As MapFile, for an input that the work depends on: a file without pixels is refused, too, or one whose type and
    /// depth words and size all say a pixel type of another size (ERROR_IMAGE), and a header whose
    /// magic, depth or length words do not fit the pixel type is told at WARNING.
    /// @throws as MapFile; ERROR_IMAGE (no pixels)
    void MapFileChecked(const std::string& path, ACCESS_MODE mode, PIXEL_TYPE pixel_type);

    void MapUInt8(const std::string& path, ACCESS_MODE mode) { MapFile(path, mode, PIXEL_TYPE::U_INT_8); }
    void MapInt16(const std::string& path, ACCESS_MODE mode) { MapFile(path, mode, PIXEL_TYPE::INT_16); }
    void MapInt32(const std::string& path, ACCESS_MODE mode) { MapFile(path, mode, PIXEL_TYPE::INT_32); }
    void MapFlt2(const std::string& path, ACCESS_MODE mode) { MapFile(path, mode, PIXEL_TYPE::FLT_2); }
    void MapFlt6(const std::string& path, ACCESS_MODE mode) { MapFile(path, mode, PIXEL_TYPE::FLT_6); }
    void MapFlt15(const std::string& path, ACCESS_MODE mode) { MapFile(path, mode, PIXEL_TYPE::FLT_15); }
    void MapCUInt8(const std::string& path, ACCESS_MODE mode) { MapFile(path, mode, PIXEL_TYPE::C_U_INT_8); }
    void MapCInt16(const std::string& path, ACCESS_MODE mode) { MapFile(path, mode, PIXEL_TYPE::C_INT_16); }
    void MapCFlt2(const std::string& path, ACCESS_MODE mode) { MapFile(path, mode, PIXEL_TYPE::C_FLT_2); }
    void MapCFlt6(const std::string& path, ACCESS_MODE mode) { MapFile(path, mode, PIXEL_TYPE::C_FLT_6); }
    void MapCFlt15(const std::string& path, ACCESS_MODE mode) { MapFile(path, mode, PIXEL_TYPE::C_FLT_15); }
    void MapRgb(const std::string& path, ACCESS_MODE mode) { MapFile(path, mode, PIXEL_TYPE::RGB); }

    /// Writes the whole image as a raster file, which is created or replaced.
    /// @param permissions  of a new file, before the process's mask
    /// @throws ERROR_IMAGE when the header's 32-bit words cannot hold columns or rows (nothing is written),
    /// ERROR_ALGORITHM for
    ///         an image without a pixel type, ERROR_CAN_NOT_OPEN_FILE, ERROR_CAN_NOT_WRITE_FILE (what was written
    ///         stays)
    void SaveSunRasterFile(const std::string& path, mode_t permissions) const;

    /// msync of the whole mapping; nothing is done for an image in memory.
    /// @param flags  as of msync, for example MS_SYNC
    /// @throws ERROR_CAN_NOT_MSYNC
    void Flush(int flags) const;

    /// Reports at DEBUG how many pieces of that many pages the image has. No advice is given to the system.
    /// @throws ERROR_ARGUMENT for chunk_pages below 1
    void Advise(long long chunk_pages) const;

    /// The row table: element (row, column), in the image's own coordinates, is table[row][column]. Built by the first
    /// call, so that workers must find it built; it is the image's own and lives until the image is freed or replaced.
    /// @throws ERROR_MEMORY without pixels in memory, ERROR_NOT_SUPPORTED_PIXEL_TYPE when T is not the type of the
    /// pixels,
    ///         ERROR_IMAGE when a mapped file's colour map leaves the pixels misaligned for T
    template <class T>
    T** GetNumRecMatrix() {
        return static_cast<T**>(RowTable(PIXEL_TYPE_OF<T>::kValue));
    }

    /// Frees, unmaps or forgets what is held; the image is empty afterwards.
    /// @throws ERROR_NOT_SUPPORTED_PIXEL_TYPE when the pixel type is damaged
    void Free();

    long long Columns() const { return held_.last_corner.x + 1 - held_.first_corner.x; }
    long long Rows() const { return held_.last_corner.y + 1 - held_.first_corner.y; }
    long long FirstColumn() const { return held_.first_corner.x; }
    long long FirstRow() const { return held_.first_corner.y; }
    long long LastColumn() const { return held_.last_corner.x; }
    long long LastRow() const { return held_.last_corner.y; }
    PIXEL_TYPE PixelType() const { return held_.pixel_type; }
    const BASIC::TYPES::DATA_TYPE& DataType() const { return held_.data_type; }
    int BytesPerPixel() const { return held_.bytes_per_pixel; }
    STORAGE_STATE Storage() const { return held_.storage; }
    /// Number of pixels of an image in memory, number of pixel bytes of a mapped one.
    long long DataSize() const { return held_.data_size; }
    /// Bytes of the mapping before the first pixel; 0 in memory.
    long long HeaderSize() const { return held_.header_size; }
    const COLOUR_MAP& ColourMap() const { return held_.colour_map; }
    /// Takes a colour map over, with its storage as its owner field tells; the one held before is freed.
    void SetColourMap(const COLOUR_MAP& colour_map);

    /// The first pixel, or null.
    std::byte* Data() { return held_.pixels; }
    const std::byte* Data() const { return held_.pixels; }
    /// The pixel at (column, row) of the image's own coordinates; not checked.
    std::byte* PixelAddress(long long column, long long row) { return held_.pixels + PixelOffset(column, row); }
    const std::byte* PixelAddress(long long column, long long row) const {
        return held_.pixels + PixelOffset(column, row);
    }

  private:
    friend class MEM_MGR_TEST_PEER;  // damages the pixel type

    struct FREE_DELETER {
        void operator()(void* memory) const { std::free(memory); }
    };

    struct HELD {
        std::byte* pixels = nullptr;
        long long header_size = 0;
        int file_descriptor = -1;
        POINT<long long> first_corner{0, 0};
        POINT<long long> last_corner{-1, -1};
        long long data_size = 0;
        PIXEL_TYPE pixel_type = PIXEL_TYPE::NONE;
        BASIC::TYPES::DATA_TYPE data_type;
        int bytes_per_pixel = 0;
        STORAGE_STATE storage = STORAGE_STATE::EMPTY;
        std::unique_ptr<const MAPPED_FILE> mapped_file;
        std::unique_ptr<void, FREE_DELETER> row_table;  ///< Rows() pointers T*, T the type of the pixels
        COLOUR_MAP colour_map;
    };

    long long PixelOffset(long long column, long long row) const {
        return ((row - held_.first_corner.y) * Columns() + (column - held_.first_corner.x)) * held_.bytes_per_pixel;
    }
    long long PixelBytes() const { return Rows() * Columns() * held_.bytes_per_pixel; }
    void* RowTable(PIXEL_TYPE requested);
    template <class T>
    void BuildRowTable();
    void Map(const std::string& path, ACCESS_MODE mode, PIXEL_TYPE pixel_type, bool checked);
    void MapOpenFile(const std::string& path, int file_descriptor, int protection, long long header_size,
                     long long columns, long long rows, const PIXEL_TYPE_RECORD& type);
    void PointColourMapIntoMapping(long long map_length);
    void CopyColourMap(const COLOUR_MAP& other);
    void FreeColourMap();
    void Unmap();
    bool IsMappedFrom(const std::string& path) const;

    HELD held_;
};
