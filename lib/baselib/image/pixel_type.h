/// \file pixel_type.h
/// The twelve pixel types of an image, their data types, sizes and codes in a raster file, and their C++ types.

#pragma once

#include <cstdint>

#include "lib/baselib/containers/records.h"

enum class PIXEL_TYPE : unsigned {
    NONE = 0,  ///< an empty image
    U_INT_8 = 1,
    INT_16 = 2,
    INT_32 = 3,
    FLT_2 = 4,
    FLT_6 = 5,
    FLT_15 = 6,
    C_U_INT_8 = 7,
    C_INT_16 = 8,
    C_FLT_2 = 9,
    C_FLT_6 = 10,
    C_FLT_15 = 11,
    RGB = 12
};

struct PIXEL_TYPE_RECORD {
    PIXEL_TYPE pixel_type;
    const char* data_type;    ///< name of the data type, for example "int_16"
    int bytes;                ///< per pixel
    std::uint32_t type_word;  ///< of a raster file's header
};

/// The record of a pixel type, or null for a value outside 1 to 12.
const PIXEL_TYPE_RECORD* FindPixelType(PIXEL_TYPE pixel_type);

/// The record of the pixel type that a raster file's header tells, or null where none is told so.
const PIXEL_TYPE_RECORD* FindPixelType(std::uint32_t type_word, std::uint32_t depth);

/// The record of a pixel type.
/// @throws ERROR_NOT_SUPPORTED_PIXEL_TYPE for a value outside 1 to 12
const PIXEL_TYPE_RECORD& KnownPixelType(PIXEL_TYPE pixel_type);

/// 16-bit real, as its bits: no arithmetic is done on it.
struct FLT_2_BITS {
    std::uint16_t bits{};
};

struct RGB_PIXEL {
    std::uint8_t red{};
    std::uint8_t green{};
    std::uint8_t blue{};
};

/// The pixel type that an element of C++ type T has: PIXEL_TYPE_OF<float>::kValue is PIXEL_TYPE::FLT_6.
template <class T>
struct PIXEL_TYPE_OF;

template <PIXEL_TYPE P>
struct PIXEL_TYPE_CONSTANT {
    static constexpr PIXEL_TYPE kValue = P;
};
template <>
struct PIXEL_TYPE_OF<std::uint8_t> : PIXEL_TYPE_CONSTANT<PIXEL_TYPE::U_INT_8> {};
template <>
struct PIXEL_TYPE_OF<std::int16_t> : PIXEL_TYPE_CONSTANT<PIXEL_TYPE::INT_16> {};
template <>
struct PIXEL_TYPE_OF<std::int32_t> : PIXEL_TYPE_CONSTANT<PIXEL_TYPE::INT_32> {};
template <>
struct PIXEL_TYPE_OF<FLT_2_BITS> : PIXEL_TYPE_CONSTANT<PIXEL_TYPE::FLT_2> {};
template <>
struct PIXEL_TYPE_OF<float> : PIXEL_TYPE_CONSTANT<PIXEL_TYPE::FLT_6> {};
template <>
struct PIXEL_TYPE_OF<double> : PIXEL_TYPE_CONSTANT<PIXEL_TYPE::FLT_15> {};
template <>
struct PIXEL_TYPE_OF<COMPLEX<std::uint8_t>> : PIXEL_TYPE_CONSTANT<PIXEL_TYPE::C_U_INT_8> {};
template <>
struct PIXEL_TYPE_OF<COMPLEX<std::int16_t>> : PIXEL_TYPE_CONSTANT<PIXEL_TYPE::C_INT_16> {};
template <>
struct PIXEL_TYPE_OF<COMPLEX<FLT_2_BITS>> : PIXEL_TYPE_CONSTANT<PIXEL_TYPE::C_FLT_2> {};
template <>
struct PIXEL_TYPE_OF<COMPLEX<float>> : PIXEL_TYPE_CONSTANT<PIXEL_TYPE::C_FLT_6> {};
template <>
struct PIXEL_TYPE_OF<COMPLEX<double>> : PIXEL_TYPE_CONSTANT<PIXEL_TYPE::C_FLT_15> {};
template <>
struct PIXEL_TYPE_OF<RGB_PIXEL> : PIXEL_TYPE_CONSTANT<PIXEL_TYPE::RGB> {};
