/// \file pool_type.h
/// The types of pool values: one table of tags, whose index is the type number, and the C++ type behind each tag.
/// A vector's tag is its element's tag and "_V", a matrix' tag is its element's tag and "_M".

#pragma once

#include <span>
#include <string>
#include <string_view>

#include "lib/baselib/containers/array.h"
#include "lib/baselib/containers/matrix.h"
#include "lib/baselib/containers/records.h"
#include "lib/baselib/containers/string.h"
#include "lib/baselib/errors/enum_base.h"

/// 0 is what an unrecognised tag reads as. There is no matrix of booleans, pairs or indexed values.
inline constexpr BASIC::TYPES::ENUM_BASE::ROW kPoolTypes[] = {
    {0, "UNKNOWN"},
    {1, "BOL"},
    {2, "BYT"},
    {3, "INT_8"},
    {4, "INT_16"},
    {5, "INT_32"},
    {6, "INT_64"},
    {7, "FLT_6"},
    {8, "FLT_15"},
    {9, "STR"},
    {10, "CPL_6"},
    {11, "CPL_15"},
    {12, "INT_32_INT_32"},
    {13, "INT_64_INT_64"},
    {14, "FLT_6_FLT_6"},
    {15, "FLT_15_FLT_15"},
    {16, "IDX_INT_32"},
    {17, "IDX_FLT_6"},
    {18, "IDX_FLT_15"},
    {19, "STR_STR"},
    {20, "BOL_V"},
    {21, "BYT_V"},
    {22, "INT_8_V"},
    {23, "INT_16_V"},
    {24, "INT_32_V"},
    {25, "INT_64_V"},
    {26, "FLT_6_V"},
    {27, "FLT_15_V"},
    {28, "CPL_6_V"},
    {29, "CPL_15_V"},
    {30, "STR_V"},
    {31, "INT_32_INT_32_V"},
    {32, "INT_64_INT_64_V"},
    {33, "FLT_6_FLT_6_V"},
    {34, "FLT_15_FLT_15_V"},
    {35, "IDX_INT_32_V"},
    {36, "IDX_FLT_6_V"},
    {37, "IDX_FLT_15_V"},
    {38, "STR_STR_V"},
    {39, "BYT_M"},
    {40, "INT_8_M"},
    {41, "INT_16_M"},
    {42, "INT_32_M"},
    {43, "FLT_6_M"},
    {44, "FLT_15_M"},
    {45, "CPL_6_M"},
    {46, "CPL_15_M"},
    {47, "STR_M"},
};

constexpr std::string_view PoolTag(int number) {
    return kPoolTypes[number].text;
}

/// @return the number of the type whose tag consists of these pieces, 0 when there is none
constexpr int PoolTypeNumber(std::string_view first, std::string_view middle = "", std::string_view last = "") {
    for (const auto& [number, tag] : kPoolTypes) {
        std::string_view rest = tag;
        bool equal = rest.size() == first.size() + middle.size() + last.size();
        for (const std::string_view piece : {first, middle, last}) {
            equal = equal && rest.starts_with(piece);
            if (equal) rest.remove_prefix(piece.size());
        }
        if (equal) return number;
    }
    return 0;
}

constexpr bool IsPoolVector(int number) {
    return PoolTag(number).ends_with("_V");
}
constexpr bool IsPoolMatrix(int number) {
    return PoolTag(number).ends_with("_M");
}

/// How messages about a vector's or matrix' braces call the type: by its tag, but for the vectors of reals, which go by
/// the names of their sizes in bytes.
constexpr std::string_view PoolTypeNameInMessages(int number) {
    if (PoolTag(number) == "FLT_6_V") return "FLT_4_V";
    if (PoolTag(number) == "FLT_15_V") return "FLT_8_V";
    return PoolTag(number);
}

/// The type number of a C++ type; 0: it is no pool type.
template <class T>
inline constexpr int kPoolType = 0;
template <>
inline constexpr int kPoolType<bool> = PoolTypeNumber("BOL");
template <>
inline constexpr int kPoolType<unsigned char> = PoolTypeNumber("BYT");
template <>
inline constexpr int kPoolType<signed char> = PoolTypeNumber("INT_8");
template <>
inline constexpr int kPoolType<short> = PoolTypeNumber("INT_16");
template <>
inline constexpr int kPoolType<int> = PoolTypeNumber("INT_32");
template <>
inline constexpr int kPoolType<long> = PoolTypeNumber("INT_64");
template <>
inline constexpr int kPoolType<long long> = PoolTypeNumber("INT_64");
template <>
inline constexpr int kPoolType<float> = PoolTypeNumber("FLT_6");
template <>
inline constexpr int kPoolType<double> = PoolTypeNumber("FLT_15");
template <>
inline constexpr int kPoolType<STRING> = PoolTypeNumber("STR");
template <>
inline constexpr int kPoolType<std::string> = PoolTypeNumber("STR");
template <>
inline constexpr int kPoolType<COMPLEX<float>> = PoolTypeNumber("CPL_6");
template <>
inline constexpr int kPoolType<COMPLEX<double>> = PoolTypeNumber("CPL_15");
template <class T>
inline constexpr int kPoolType<TUPLE<T>> = PoolTypeNumber(PoolTag(kPoolType<T>), "_", PoolTag(kPoolType<T>));
template <class T>
inline constexpr int kPoolType<INDEX<int, T>> = PoolTypeNumber("IDX_", PoolTag(kPoolType<T>));
template <class T>
inline constexpr int kPoolType<ARRAY<T>> = PoolTypeNumber(PoolTag(kPoolType<T>), "_V");
template <class T>
inline constexpr int kPoolType<MATRIX<T>> = PoolTypeNumber(PoolTag(kPoolType<T>), "_M");

/// A type of pool values as an enumeration.
class POOL_TYPE : public BASIC::TYPES::ENUM_BASE {
  public:
    explicit POOL_TYPE(int number) { AssignId(number, true); }

  private:
    [[nodiscard]] std::span<const ROW> Rows() const override { return kPoolTypes; }
};
