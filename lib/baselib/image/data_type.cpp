#include "lib/baselib/image/data_type.h"

#include <cstddef>
#include <iterator>

namespace BASIC::TYPES {

namespace {

constexpr ENUM_BASE::ROW kNames[] = {
    {0, "int_8"},     {1, "u_int_8"},     {2, "int_16"},    {3, "u_int_16"},    {4, "int_32"},    {5, "u_int_32"},
    {6, "int_64"},    {7, "u_int_64"},    {8, "flt_2"},     {9, "flt_6"},       {10, "flt_15"},   {11, "flt_30"},
    {12, "c_int_8"},  {13, "c_u_int_8"},  {14, "c_int_16"}, {15, "c_u_int_16"}, {16, "c_int_32"}, {17, "c_u_int_32"},
    {18, "c_int_64"}, {19, "c_u_int_64"}, {20, "c_flt_2"},  {21, "c_flt_6"},    {22, "c_flt_15"}, {23, "c_flt_30"},
    {24, "rgb"},      {25, "others"}};

/// By code.
constexpr int kSizesBytes[] = {1, 1, 2, 2, 4, 4, 8, 8, 2, 4, 8, 16, 2, 2, 4, 4, 8, 8, 16, 16, 4, 8, 16, 32, 3, 0};

static_assert(std::size(kNames) == std::size(kSizesBytes));

}  // namespace

DATA_TYPE::DATA_TYPE() : DATA_TYPE("others") {}
DATA_TYPE::DATA_TYPE(const std::string& name) {
    AssignText(name, true);
}

std::span<const ENUM_BASE::ROW> DATA_TYPE::Rows() const {
    return kNames;
}
void DATA_TYPE::RowAssigned() {
    size_bytes_ = kSizesBytes[static_cast<std::size_t>(Id())];
}

}  // namespace BASIC::TYPES
