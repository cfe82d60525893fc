#include "lib/baselib/image/pixel_type.h"

#include <iterator>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

namespace {

// Type word 1 is the plain type and 3 the RGB type of the raster format; 92 to 99 are this program's own codes.
constexpr PIXEL_TYPE_RECORD kPixelTypes[] = {
    {PIXEL_TYPE::U_INT_8, "u_int_8", 1, 1},      {PIXEL_TYPE::INT_16, "int_16", 2, 1},
    {PIXEL_TYPE::INT_32, "int_32", 4, 1},        {PIXEL_TYPE::FLT_2, "flt_2", 2, 93},
    {PIXEL_TYPE::FLT_6, "flt_6", 4, 99},         {PIXEL_TYPE::FLT_15, "flt_15", 8, 98},
    {PIXEL_TYPE::C_U_INT_8, "c_u_int_8", 2, 94}, {PIXEL_TYPE::C_INT_16, "c_int_16", 4, 97},
    {PIXEL_TYPE::C_FLT_2, "c_flt_2", 4, 92},     {PIXEL_TYPE::C_FLT_6, "c_flt_6", 8, 96},
    {PIXEL_TYPE::C_FLT_15, "c_flt_15", 16, 95},  {PIXEL_TYPE::RGB, "rgb", 3, 3}};

static_assert(sizeof(RGB_PIXEL) == 3 && sizeof(COMPLEX<FLT_2_BITS>) == 4 && sizeof(COMPLEX<double>) == 16,
              "pixels lie in files as they lie in memory");

}  // namespace

const PIXEL_TYPE_RECORD* FindPixelType(PIXEL_TYPE pixel_type) {
    const auto number = static_cast<unsigned>(pixel_type);
    if (number < 1 || number > std::size(kPixelTypes)) return nullptr;
    return &kPixelTypes[number - 1];
}

const PIXEL_TYPE_RECORD* FindPixelType(std::uint32_t type_word, std::uint32_t depth) {
    for (const PIXEL_TYPE_RECORD& type : kPixelTypes)
        if (type.type_word == type_word && 8U * static_cast<unsigned>(type.bytes) == depth) return &type;
    return nullptr;
}

const PIXEL_TYPE_RECORD& KnownPixelType(PIXEL_TYPE pixel_type) {
    const PIXEL_TYPE_RECORD* const type = FindPixelType(pixel_type);
    if (type == nullptr) {
        Log() << LOGGING_LEVEL::ALARM << "MEM_MGR: unknown pixeltype\n";
        throw ERROR_NOT_SUPPORTED_PIXEL_TYPE();
    }
    return *type;
}
