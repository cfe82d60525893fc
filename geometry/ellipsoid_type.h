/// \file ellipsoid_type.h
/// The named reference ellipsoids: "Airy", "Bessel", "GRS80", "WGS84" and "-" (none; both axes 0).
/// Axes: metres. They are the system's own values, which differ from published ones in places: "Airy" is the modified
/// Airy figure, the b of "Bessel" is rounded to 2 mm and that of "WGS84" to 1 mm. Products depend on them: keep them.

#pragma once

#include <span>
#include <string>

#include "lib/baselib/errors/enum_base.h"

class PARAMETER_POOL;

template <class T>
class EllipsoidType : public BASIC::TYPES::ENUM_BASE {
  public:
    /// "-", no ellipsoid.
    EllipsoidType();
    /// Capitals and small letters are the same. @throws BASIC::TYPES::ERROR_ENUM_BASE_INVALID_VALUE
    explicit EllipsoidType(const std::string& text);

    /// Reads the text under the key "ellipsoid_type".
    /// @throws the pool's errors; BASIC::TYPES::ERROR_ENUM_BASE_INVALID_VALUE after a line that names pool, key and
    /// text
    void ReadFromParameterPool(PARAMETER_POOL& pool);

    [[nodiscard]] T SemiMajorAxis() const { return a_m_; }
    [[nodiscard]] T SemiMinorAxis() const { return b_m_; }

    /// All names in the order of their identifiers, each in single quotes and followed by a blank.
    [[nodiscard]] static std::string ValidNames();

  private:
    [[nodiscard]] std::span<const ROW> Rows() const override;
    void RowAssigned() override;

    T a_m_ = 0;
    T b_m_ = 0;
};

extern template class EllipsoidType<float>;
extern template class EllipsoidType<double>;
extern template class EllipsoidType<long double>;
