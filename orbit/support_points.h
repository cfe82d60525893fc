/// \file support_points.h
/// Support points in the interpolators' own form, checked once when an interpolator is created.

#pragma once

#include <cstddef>
#include <vector>

#include "lib/baselib/containers/array.h"
#include "lib/baselib/containers/records.h"

/// Abscissae and ordinates as double; slope is empty for points without derivative.
struct SUPPORT_POINTS {
    std::vector<double> x;
    std::vector<double> y;
    std::vector<double> slope;

    int Count() const { return static_cast<int>(x.size()); }
    /// Interval 0 .. Count() - 2 that holds x; the first or the last one for an x outside.
    int IntervalOf(double at) const;
};

/// What an interpolator asks of its points.
enum class SORTED {
    STRICTLY,      ///< every abscissa greater than the one before
    EQUAL_ALLOWED  ///< a fit can do with several ordinates at one abscissa
};

/// @param owner  class name that begins the messages
/// @throws ERROR_ARGUMENT, with an ALARM line that names the point: no point, an abscissa that is not finite or out of
/// order, values beyond what the interpolators compute with (double: 1e60, steps from 1e-60; float: 1e15, steps from
/// 1e-6). A NaN ordinate passes where nan_ordinates says so.
template <class P>
SUPPORT_POINTS CheckedSupportPoints(const ARRAY<P>& points, const char* owner, SORTED sorted,
                                    bool nan_ordinates = false);

/// Logs "<owner>: <text>" at ALARM and throws ERROR_ARGUMENT.
[[noreturn]] void RefuseArgument(const char* owner, const char* format, ...) __attribute__((format(printf, 2, 3)));

extern template SUPPORT_POINTS CheckedSupportPoints(const ARRAY<POINT<float>>&, const char*, SORTED, bool);
extern template SUPPORT_POINTS CheckedSupportPoints(const ARRAY<POINT<double>>&, const char*, SORTED, bool);
extern template SUPPORT_POINTS CheckedSupportPoints(const ARRAY<DPOINT<float>>&, const char*, SORTED, bool);
extern template SUPPORT_POINTS CheckedSupportPoints(const ARRAY<DPOINT<double>>&, const char*, SORTED, bool);
