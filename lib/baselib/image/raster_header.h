/// \file raster_header.h
/// The 32-byte header of a Sun raster file: eight big-endian 32-bit words. Grammar and example: docs/raster_files.md.

#pragma once

#include <array>
#include <cstdint>

inline constexpr int kRasterHeaderBytes = 32;

using RASTER_HEADER_BYTES = std::array<unsigned char, kRasterHeaderBytes>;

struct RASTER_HEADER {
    std::uint32_t magic = 0x59a66a95;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t depth = 0;   ///< bits per pixel
    std::uint32_t length = 0;  ///< bytes of pixel data; 0 from 4 GiB on
    std::uint32_t type = 0;
    std::uint32_t map_type = 0;
    std::uint32_t map_length = 0;  ///< bytes of colour map between header and pixels
};

RASTER_HEADER_BYTES EncodeRasterHeader(const RASTER_HEADER& header);
RASTER_HEADER DecodeRasterHeader(const RASTER_HEADER_BYTES& bytes);
