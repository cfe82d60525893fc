/// \file hermite_poly.h
/// Hermite interpolation: the polynomial that takes value and first derivative of the m support points nearest to x.
/// Accuracy: exact up to degree 2 m - 1; at a support point value and first derivative are the given ones, bit for bit.
/// Outside the data: ends the process (see Evaluate), since an orbit asked outside its data is an error of
/// configuration that must not make a product. Method: the polynomial of each interval of the data is unique, so it is
/// kept in Newton's form with double nodes, those next to the interval first: no search for weights, no division at
/// query time.

#pragma once

#include "orbit/interpolation/interpolation.h"
#include "orbit/interpolation/newton_form.h"

class HERMITE_POLY_CORE final : public INTERPOLATOR {
  public:
    static constexpr int kDefaultNodeCount = 8;
    static constexpr int kMaxNodeCount = 128;  ///< degree 255; set-up takes point count x 4 nodes^2 steps

    [[nodiscard]] const char* Name() const override { return "HERMITE_POLY"; }
    /// The node count m, from 1. @throws ERROR_ARGUMENT outside 1 .. kMaxNodeCount
    void SetSupportPointCount(int node_count) override;

    /// More nodes than points: takes the number of points, with a line at WARNING.
    /// @param points  a NaN ordinate or derivative is not refused here; the query that meets it ends the process
    void Create(const SUPPORT_POINTS& points) override;

    /// The nodes are points s .. s + m - 1: with j the first point not less than x, s is j - m / 2, kept inside the
    /// data. Ends the process with exit status 1, after a line in the log, for x outside the first to last abscissa and
    /// for a result that is NaN.
    [[nodiscard]] JET At(double x) const override;

  private:
    void CreateCell(const SUPPORT_POINTS& points, int point);

    std::vector<double> x_;
    int wanted_node_count_ = kDefaultNodeCount;
    int node_count_ = 0;
    bool is_created_ = false;
    std::vector<NEWTON_TERM> terms_;  ///< 2 node_count_ for each point j: the polynomial between point j - 1 and j
    std::vector<double> scales_;      ///< for each point j
};

template <class T>
class HERMITE_POLY final : public INTERPOLATION_BY<T, DPOINT<T>, HERMITE_POLY_CORE> {};

extern template class HERMITE_POLY<float>;
extern template class HERMITE_POLY<double>;
