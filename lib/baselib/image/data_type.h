/// \file data_type.h
/// The element types of images and record files: each has a code, a name and a size.
/// Names: "u_" unsigned, "c_" complex (two elements, real part first), "int_N" N bits, "flt_N" a real of about N
/// decimal digits (flt_2: 16 bits, flt_6: IEEE 754 single, flt_15: double, flt_30: quadruple). Threads: plain values;
/// the table is constant.

#pragma once

#include <string>

namespace BASIC::TYPES {

/// Code, name and bytes per element of one data type; codes are the positions in the table, from 0.
class DATA_TYPE {
  public:
    /// "others": no element, size 0.
    DATA_TYPE();
    /// @param name  as in the table, for example "int_16"
    /// @throws ERROR_ARGUMENT for a name that is not in the table
    explicit DATA_TYPE(const std::string& name);

    int Id() const { return id_; }
    const std::string& Text() const;
    /// Bytes per element; 0 for "others".
    int Size() const;

  private:
    int id_;
};

}  // namespace BASIC::TYPES
