/// \file support_points.h
/// What an interpolator is made of: abscissae, ordinates, and slopes where they are given. A view, always in double;
/// whoever calls Create keeps the numbers while it runs.

#pragma once

#include <span>

struct SUPPORT_POINTS {
    std::span<const double> x;
    std::span<const double> y;
    std::span<const double> slope{};  ///< empty for points without derivative
    bool is_float = false;            ///< the numbers come from floats, and so narrower limits hold
    int first_index = 0;              ///< of the first point, in the caller's own counting; for messages

    [[nodiscard]] int Count() const { return static_cast<int>(x.size()); }
    /// Points first .. first + count - 1, counted from 0.
    [[nodiscard]] SUPPORT_POINTS Part(int first, int count) const;
};

/// Half-way between two abscissae, in the arithmetic of their own type.
[[nodiscard]] double Midway(double a, double b, bool is_float);

/// What an interpolator asks of its points.
enum class SORTED {
    STRICTLY,      ///< every abscissa greater than the one before
    EQUAL_ALLOWED  ///< a fit can do with several ordinates at one abscissa
};

/// @param owner  class name that begins the messages
/// @throws ERROR_ARGUMENT, with an ALARM line that names the point: no point, an abscissa that is not finite or out of
/// order, values beyond what the interpolators compute with (double: 1e60, steps from 1e-60; float: 1e15, steps from
/// 1e-6). A NaN ordinate passes where nan_ordinates says so.
void CheckSupportPoints(const SUPPORT_POINTS& points, const char* owner, SORTED sorted, bool nan_ordinates = false);

/// Logs "<owner>: <text>" at ALARM and throws ERROR_ARGUMENT.
[[noreturn]] void RefuseArgument(const char* owner, const char* format, ...) __attribute__((format(printf, 2, 3)));
