/// \file interpolator.h
/// The one interface of all interpolations of one axis: points in double in, value and both derivatives in double out.
/// An orbit asks three of them; the class templates over a type (interpolation.h) are what stands around one of them.
/// Outside the data the outermost piece goes on (HERMITE_POLY alone ends the process instead).
/// Threads: At is const, allocates nothing and takes no lock (but see local_interpolation.h); the rest belongs to one
/// thread.

#pragma once

#include <memory>
#include <vector>

#include "orbit/interpolation/jet.h"
#include "orbit/interpolation/support_points.h"

class INTERPOLATOR {
  public:
    virtual ~INTERPOLATOR() = default;

    /// Begins the messages: "POLYNOM".
    [[nodiscard]] virtual const char* Name() const = 0;

    /// -1 leaves them unchanged; no effect in classes without such a parameter. @throws ERROR_ARGUMENT after logging
    virtual void SetOrder(int) {}
    virtual void SetSupportPointCount(int) {}
    /// -1 in classes without an order.
    [[nodiscard]] virtual int Order() const { return -1; }
    /// Whether Create says what it found in the singular values; a local interpolation says it once for all its pieces.
    virtual void WarnAboutDropped(bool) {}

    /// Computes what the queries need; of the points it keeps what it still wants itself.
    /// @throws ERROR_ARGUMENT for points or parameters that do not suit (logged first), ERROR_NO_MEMORY
    virtual void Create(const SUPPORT_POINTS& points) = 0;

    /// @throws ERROR_ARGUMENT (logged first) before a successful Create, and for an x so far outside the data that the
    /// result would overflow
    [[nodiscard]] virtual JET At(double x) const = 0;

    /// The polynomial coefficients, where the class has any. Here: logs a line and returns nothing.
    [[nodiscard]] virtual std::vector<long double> Coefficients() const;

  protected:
    INTERPOLATOR() = default;
    INTERPOLATOR(const INTERPOLATOR&) = default;
    INTERPOLATOR(INTERPOLATOR&&) noexcept = default;
    INTERPOLATOR& operator=(const INTERPOLATOR&) = default;
    INTERPOLATOR& operator=(INTERPOLATOR&&) noexcept = default;
};

/// @tparam C  the concrete class
template <class C>
[[nodiscard]] std::unique_ptr<INTERPOLATOR> MakeInterpolator() {
    return std::make_unique<C>();
}
