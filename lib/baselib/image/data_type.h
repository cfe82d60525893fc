/// \file data_type.h
/// The element types of images and record files: each has a code, a name and a size.
/// Names: "u_" unsigned, "c_" complex (two elements, real part first), "int_N" N bits, "flt_N" a real of about N
/// decimal digits (flt_2: 16 bits, flt_6: IEEE 754 single, flt_15: double, flt_30: quadruple). Threads: plain values;
/// the table is constant.

#pragma once

#include <span>
#include <string>

#include "lib/baselib/errors/enum_base.h"

namespace BASIC::TYPES {

/// Code (the identifier, from 0), name (the text) and bytes per element of one data type.
class DATA_TYPE : public ENUM_BASE {
  public:
    /// "others": no element, size 0.
    DATA_TYPE();
    /// @param name  exactly as in the table, for example "int_16"
    /// @throws ERROR_ENUM_BASE_INVALID_VALUE for a name that is not in the table
    explicit DATA_TYPE(const std::string& name);

    /// Bytes per element; 0 for "others".
    [[nodiscard]] int Size() const { return size_bytes_; }

  protected:
    [[nodiscard]] std::span<const ROW> Rows() const override;
    void RowAssigned() override;

  private:
    int size_bytes_ = 0;
};

}  // namespace BASIC::TYPES
