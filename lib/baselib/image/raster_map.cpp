/// \file raster_map.cpp
/// MEM_MGR: mapping raster files.

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <limits>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/image/file_descriptor.h"
#include "lib/baselib/image/mem_mgr.h"
#include "lib/baselib/image/raster_header.h"
#include "lib/baselib/image/system_error_text.h"
#include "lib/baselib/logging/logging.h"

namespace {

int OpenFlags(ACCESS_MODE mode) {
    if (mode == ACCESS_MODE::READ_ONLY) return O_RDONLY;
    return mode == ACCESS_MODE::WRITE_ONLY ? O_WRONLY : O_RDWR;
}

int Protection(ACCESS_MODE mode) {
    if (mode == ACCESS_MODE::READ_ONLY) return PROT_READ;
    return mode == ACCESS_MODE::WRITE_ONLY ? PROT_WRITE : PROT_READ | PROT_WRITE;
}

int OpenForMapping(const std::string& path, ACCESS_MODE mode) {
    // O_NONBLOCK: opening a FIFO must end in an error, not in waiting for a writer. It means nothing to regular files.
    const int number = OpenFile(path, OpenFlags(mode) | O_CLOEXEC | O_NONBLOCK);
    if (number < 0) {
        LogOpenFailure(path, errno);
        throw ERROR_CAN_NOT_OPEN_FILE();
    }
    return number;
}

RASTER_HEADER ReadHeader(const std::string& path, int file_descriptor) {
    RASTER_HEADER_BYTES bytes{};
    if (ReadWhole(file_descriptor, bytes.data(), bytes.size()) != bytes.size()) {
        LogAndThrow<ERROR_CAN_NOT_READ_FILE>("MEM_MGR: can not read header from: %s", path.c_str());
    }
    return DecodeRasterHeader(bytes);
}

long long BytesOfFile(int file_descriptor) {
    struct stat status {};
    return fstat(file_descriptor, &status) == 0 ? status.st_size : 0;
}

/// What the header promises in pixels of this size; beyond 64 bits, which no file has, the largest number. Width,
/// height and map length are 32-bit, a pixel at most 16 bytes.
long long PromisedBytes(const RASTER_HEADER& header, const PIXEL_TYPE_RECORD& type) {
    long long bytes = 0;
    const bool beyond =
        __builtin_mul_overflow(static_cast<long long>(header.width), static_cast<long long>(header.height), &bytes) ||
        __builtin_mul_overflow(bytes, type.bytes, &bytes) ||
        __builtin_add_overflow(bytes, kRasterHeaderBytes + static_cast<long long>(header.map_length), &bytes);
    return beyond ? std::numeric_limits<long long>::max() : bytes;
}

/// Header words alone may be odd; a file that has the size of what they say is what they say.
void RefuseOtherType(const std::string& path, int file_descriptor, const RASTER_HEADER& header,
                     const PIXEL_TYPE_RECORD& type) {
    const PIXEL_TYPE_RECORD* const told = FindPixelType(header.type, header.depth);
    if (told == nullptr || told->bytes == type.bytes) return;
    const long long bytes = BytesOfFile(file_descriptor);
    if (bytes != PromisedBytes(header, *told)) return;
    LogAndThrow<ERROR_IMAGE>(
        "%s: header (type %u, depth %u) and size (%lld bytes) say %s pixels, it is to be read as %s", path.c_str(),
        header.type, header.depth, bytes, told->data_type, type.data_type);
}

void RefuseShortFile(const std::string& path, int file_descriptor, const RASTER_HEADER& header,
                     const PIXEL_TYPE_RECORD& type) {
    const long long bytes = BytesOfFile(file_descriptor);
    if (PromisedBytes(header, type) <= bytes) return;
    LogAndThrow<ERROR_IMAGE>(
        "%s: too short: the header promises %u x %u pixels of %d bytes (%s) after %lld bytes, the file has %lld "
        "bytes",
        path.c_str(), header.width, header.height, type.bytes, type.data_type,
        kRasterHeaderBytes + static_cast<long long>(header.map_length), bytes);
}

void RefuseNoPixels(const std::string& path, const RASTER_HEADER& header) {
    if (header.width > 0 && header.height > 0) return;
    LogAndThrow<ERROR_IMAGE>("%s: the image has no pixels: the header says %u x %u", path.c_str(), header.width,
                             header.height);
}

/// A length of 0 is common practice for plain images and tells nothing.
void WarnOfOddHeader(const std::string& path, const RASTER_HEADER& header, const PIXEL_TYPE_RECORD& type) {
    const auto bytes =
        static_cast<unsigned long long>(header.width) * header.height * static_cast<unsigned>(type.bytes);
    const bool fits = header.magic == RASTER_HEADER().magic && header.depth == 8U * static_cast<unsigned>(type.bytes) &&
                      (header.length == 0 || header.length == bytes);
    if (fits) return;
    Log().Message(
        LOGGING_LEVEL::WARNING,
        "%s: the header does not fit an image of %s pixels, as which it is read: magic 0x%08x, depth %u, length "
        "%u (expected 0x%08x, %d, %llu)",
        path.c_str(), type.data_type, header.magic, header.depth, header.length, RASTER_HEADER().magic, 8 * type.bytes,
        bytes);
}

}  // namespace

void MEM_MGR::MapFile(const std::string& path, ACCESS_MODE mode, PIXEL_TYPE pixel_type) {
    Map(path, mode, pixel_type, false);
}

void MEM_MGR::MapFileChecked(const std::string& path, ACCESS_MODE mode, PIXEL_TYPE pixel_type) {
    Map(path, mode, pixel_type, true);
}

void MEM_MGR::Map(const std::string& path, ACCESS_MODE mode, PIXEL_TYPE pixel_type, bool checked) {
    Free();
    const PIXEL_TYPE_RECORD& type = KnownPixelType(pixel_type);
    Log().Message(LOGGING_LEVEL::DEBUG, "map file with access mode %d", static_cast<int>(mode));
    Log().Message(LOGGING_LEVEL::DEBUG, "map file with prot flag %d", Protection(mode));
    FILE_DESCRIPTOR file(OpenForMapping(path, mode));
    const RASTER_HEADER header = ReadHeader(path, file.Get());
    if (checked) {
        RefuseNoPixels(path, header);
        RefuseOtherType(path, file.Get(), header, type);
    }
    RefuseShortFile(path, file.Get(), header, type);
    if (checked) WarnOfOddHeader(path, header, type);
    const long long map_length = header.map_length;
    MapOpenFile(path, file.Get(), Protection(mode), kRasterHeaderBytes + map_length, header.width, header.height, type);
    file.Release();
    PointColourMapIntoMapping(map_length);
}

void MEM_MGR::MapOpenFile(const std::string& path, int file_descriptor, int protection, long long header_size,
                          long long columns, long long rows, const PIXEL_TYPE_RECORD& type) {
    const long long data_bytes = columns * rows * type.bytes;
    void* const mapping =
        mmap(nullptr, static_cast<std::size_t>(header_size + data_bytes), protection, MAP_SHARED, file_descriptor, 0);
    if (mapping == MAP_FAILED) {
        const int error = errno;
        Log() << LOGGING_LEVEL::ALARM << "MEM_MGR: mmap: mmap failed..\n";
        Log().Message(LOGGING_LEVEL::ALARM, "MEM_MGR: %s", std::strerror(error));
        LogAndThrow<ERROR_CAN_NOT_MMAP>("%s: can not map %lld bytes", path.c_str(), header_size + data_bytes);
    }
    held_.mapped_file =
        std::make_unique<const MAPPED_FILE>(path, mapping, static_cast<std::size_t>(header_size + data_bytes));
    held_.pixels = static_cast<std::byte*>(mapping) + header_size;
    held_.header_size = header_size;
    held_.file_descriptor = file_descriptor;
    held_.first_corner = {0, 0};
    held_.last_corner = {columns - 1, rows - 1};
    held_.data_size = data_bytes;
    held_.pixel_type = type.pixel_type;
    held_.data_type = BASIC::TYPES::DATA_TYPE(type.data_type);
    held_.bytes_per_pixel = type.bytes;
    held_.storage = STORAGE_STATE::MAPPED_FILE;
}

void MEM_MGR::PointColourMapIntoMapping(long long map_length) {
    if (map_length == 0) return;
    auto* const red = reinterpret_cast<unsigned char*>(held_.pixels) - map_length;
    const long long entries = map_length / 3;
    SetColourMap({red, red + entries, red + 2 * entries, entries, COLOUR_MAP_OWNER::NOT_OWNED});
}
