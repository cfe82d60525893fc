#include "lib/baselib/image/raster_header.h"

#include <cstddef>

namespace {

constexpr std::uint32_t RASTER_HEADER::*kWords[] = {
    &RASTER_HEADER::magic,  &RASTER_HEADER::width, &RASTER_HEADER::height,   &RASTER_HEADER::depth,
    &RASTER_HEADER::length, &RASTER_HEADER::type,  &RASTER_HEADER::map_type, &RASTER_HEADER::map_length};

}  // namespace

RASTER_HEADER_BYTES EncodeRasterHeader(const RASTER_HEADER& header) {
    RASTER_HEADER_BYTES bytes{};
    std::size_t at = 0;
    for (const auto word : kWords) {
        for (const int shift : {24, 16, 8, 0})
            bytes[at++] = static_cast<unsigned char>((header.*word >> shift) & 0xffU);
    }
    return bytes;
}

RASTER_HEADER DecodeRasterHeader(const RASTER_HEADER_BYTES& bytes) {
    RASTER_HEADER header;
    std::size_t at = 0;
    for (const auto word : kWords) {
        std::uint32_t value = 0;
        for (int i = 0; i < 4; ++i) value = (value << 8) | bytes[at++];
        header.*word = value;
    }
    return header;
}
