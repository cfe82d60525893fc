/// \file local_interpolation.h
/// Overlapping pieces: piece i interpolates points i .. i + m - 1 and answers around their centre.
/// Hand-over between piece i and i + 1: at point i + m / 2 for even m, midway between points i + (m - 1) / 2 and
/// i + (m + 1) / 2 for odd m; a query at a hand-over goes to the later piece. The first and the last piece reach to the
/// ends of the data and, for pieces other than Hermite, beyond.
/// Continuity at a hand-over: exact pieces and even m join in value; otherwise there is a step of the size of the
/// interpolation's error.

#pragma once

#include <vector>

#include "orbit/cheby_poly.h"
#include "orbit/hermite_poly.h"
#include "orbit/interpolation.h"
#include "orbit/poly_ref.h"
#include "orbit/polynom.h"
#include "orbit/polynom_fit.h"

/// @tparam I  POLYNOM, POLYNOM_FIT, CHEBY_POLY or HERMITE_POLY of T; P is that interpolator's support point
template <class T, class I, class P>
class LOCAL_INTERPOLATION final : public INTERPOLATION<T, P> {
  public:
    static constexpr int kDefaultSupportPointCount = 8;

    using INTERPOLATION<T, P>::Create;
    void Create(const ARRAY<P>& points) override;

    /// The pieces' order, where they have one.
    void SetOrder(int order) override;
    /// Points of a piece, from 1 (and at most what a piece of type I takes); for Hermite pieces their node count, too.
    void SetSupportPointCount(int support_point_count) override;

    void Evaluate(T x, T& value, T& first, T& second) const override;

    int PieceCount() const { return static_cast<int>(pieces_.size()); }
    const POLY_REF<T, I, P>& Piece(int index) const { return pieces_[static_cast<size_t>(index)]; }

  private:
    void CreatePiece(const ARRAY<P>& points, int index, int piece_count, int point_count);

    int order_ = -1;
    int support_point_count_ = kDefaultSupportPointCount;
    std::vector<POLY_REF<T, I, P>> pieces_;
    std::vector<T> joints_;  ///< joint i between piece i and i + 1
};

extern template class LOCAL_INTERPOLATION<float, POLYNOM<float>, POINT<float>>;
extern template class LOCAL_INTERPOLATION<double, POLYNOM<double>, POINT<double>>;
extern template class LOCAL_INTERPOLATION<float, POLYNOM_FIT<float>, POINT<float>>;
extern template class LOCAL_INTERPOLATION<double, POLYNOM_FIT<double>, POINT<double>>;
extern template class LOCAL_INTERPOLATION<float, CHEBY_POLY<float>, POINT<float>>;
extern template class LOCAL_INTERPOLATION<double, CHEBY_POLY<double>, POINT<double>>;
extern template class LOCAL_INTERPOLATION<float, HERMITE_POLY<float>, DPOINT<float>>;
extern template class LOCAL_INTERPOLATION<double, HERMITE_POLY<double>, DPOINT<double>>;
