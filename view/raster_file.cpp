#include "view/raster_file.h"

#include <cmath>
#include <cstring>
#include <fstream>
#include <limits>

#include "companions/companion_error.h"
#include "companions/input_file.h"
#include "lib/baselib/image/raster_header.h"

namespace {

constexpr double kNoValue = std::numeric_limits<double>::quiet_NaN();

RASTER_HEADER HeaderOf(const std::string& path) {
    RequireRegularFile(path);
    RASTER_HEADER_BYTES bytes{};
    std::ifstream file(path, std::ios::binary);
    if (!file.read(reinterpret_cast<char*>(bytes.data()), bytes.size()))
        throw COMPANION_ERROR(path + ": is no raster file: it has less than the " + std::to_string(kRasterHeaderBytes) +
                              " bytes of a header");
    const RASTER_HEADER header = DecodeRasterHeader(bytes);
    if (header.magic != RASTER_HEADER{}.magic)
        throw COMPANION_ERROR(path + ": is no raster file: it does not begin with 59a66a95");
    return header;
}

template <class T>
double ValueOf(T value) {
    if constexpr (std::is_floating_point_v<T>) return std::isfinite(value) ? static_cast<double>(value) : kNoValue;
    if constexpr (std::is_same_v<T, std::int16_t>) return value == kVoidHeight ? kNoValue : value;
    return static_cast<double>(value);
}

/// A colour map of odd length puts the pixels at odd addresses.
template <class T>
void CopyRow(const std::byte* pixels, std::span<double> values) {
    for (double& value : values) {
        T pixel;
        std::memcpy(&pixel, pixels, sizeof pixel);
        pixels += sizeof pixel;
        value = ValueOf(pixel);
    }
}

}  // namespace

PIXEL_TYPE PixelTypeOfFile(const std::string& path) {
    const RASTER_HEADER header = HeaderOf(path);
    if (const PIXEL_TYPE_RECORD* const type = FindPixelType(header.type, header.depth)) return type->pixel_type;
    throw COMPANION_ERROR(path + ": header: no pixel type has depth " + std::to_string(header.depth) + " and type " +
                          std::to_string(header.type));
}

const char* PixelTypeText(PIXEL_TYPE pixel_type) {
    switch (pixel_type) {
        case PIXEL_TYPE::U_INT_8:
            return "8-bit unsigned integer";
        case PIXEL_TYPE::INT_16:
            return "16-bit integer";
        case PIXEL_TYPE::INT_32:
            return "32-bit integer";
        case PIXEL_TYPE::FLT_6:
            return "32-bit real";
        case PIXEL_TYPE::FLT_15:
            return "64-bit real";
        default:
            return "";
    }
}

RASTER_FILE::RASTER_FILE(const std::string& path) : path_(path) {
    const PIXEL_TYPE pixel_type = PixelTypeOfFile(path);
    if (*PixelTypeText(pixel_type) == '\0')
        throw COMPANION_ERROR(path + ": header: pixel type " + KnownPixelType(pixel_type).data_type +
                              ": expected integers or reals");
    image_.MapFileChecked(path, ACCESS_MODE::READ_ONLY, pixel_type);
}

void RASTER_FILE::ReadRow(long long row, std::span<double> values) const {
    const std::byte* const pixels = image_.PixelAddress(0, row);
    switch (image_.PixelType()) {
        case PIXEL_TYPE::U_INT_8:
            return CopyRow<std::uint8_t>(pixels, values);
        case PIXEL_TYPE::INT_16:
            return CopyRow<std::int16_t>(pixels, values);
        case PIXEL_TYPE::INT_32:
            return CopyRow<std::int32_t>(pixels, values);
        case PIXEL_TYPE::FLT_6:
            return CopyRow<float>(pixels, values);
        default:
            return CopyRow<double>(pixels, values);
    }
}
