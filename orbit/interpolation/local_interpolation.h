/// \file local_interpolation.h
/// Overlapping pieces: piece i interpolates points i .. i + m - 1 and answers around their centre.
/// Hand-over between piece i and i + 1: at point i + m / 2 for even m, midway between points i + (m - 1) / 2 and
/// i + (m + 1) / 2 for odd m; a query at a hand-over goes to the later piece. The first and the last piece reach to the
/// ends of the data and, for pieces other than Hermite, beyond.
/// Continuity at a hand-over: exact pieces and even m join in value; otherwise there is a step of the size of the
/// interpolation's error.

#pragma once

#include <memory>

#include "orbit/interpolation/cheby_poly.h"
#include "orbit/interpolation/hermite_poly.h"
#include "orbit/interpolation/local_pieces.h"
#include "orbit/interpolation/polynom.h"
#include "orbit/interpolation/polynom_fit.h"

class LOCAL_CORE : public INTERPOLATOR {
  public:
    static constexpr int kDefaultSupportPointCount = 8;

    [[nodiscard]] const char* Name() const override { return "LOCAL_INTERPOLATION"; }
    /// The pieces' order, where they have one.
    void SetOrder(int order) override;
    [[nodiscard]] int Order() const override { return order_; }
    /// Points of a piece, from 1 (and at most what a piece takes); for Hermite pieces their node count, too.
    void SetSupportPointCount(int support_point_count) override;

    void Create(const SUPPORT_POINTS& points) override;
    [[nodiscard]] JET At(double x) const override;

    [[nodiscard]] int PieceCount() const { return pieces_ == nullptr ? 0 : pieces_->Count(); }
    [[nodiscard]] const LOCAL_PIECES::PIECE& Piece(int index) const { return pieces_->Piece(index); }

  protected:
    /// @param make  the interpolator of a piece
    explicit LOCAL_CORE(std::unique_ptr<INTERPOLATOR> (*make)()) : make_(make) {}

  private:
    std::unique_ptr<INTERPOLATOR> (*make_)();
    int order_ = -1;
    int support_point_count_ = kDefaultSupportPointCount;
    std::shared_ptr<LOCAL_PIECES> pieces_;  ///< copies share them
};

/// @tparam C  core of the pieces
template <class C>
class LOCAL_CORE_OF final : public LOCAL_CORE {
  public:
    LOCAL_CORE_OF() : LOCAL_CORE(MakeInterpolator<C>) {}
};

/// @tparam I  POLYNOM, POLYNOM_FIT, CHEBY_POLY or HERMITE_POLY of T; P is that interpolator's support point
template <class T, class I, class P>
class LOCAL_INTERPOLATION final : public INTERPOLATION_BY<T, P, LOCAL_CORE_OF<typename I::CORE>> {
  public:
    [[nodiscard]] int PieceCount() const { return this->Core().PieceCount(); }
    [[nodiscard]] const LOCAL_PIECES::PIECE& Piece(int index) const { return this->Core().Piece(index); }
};

extern template class LOCAL_INTERPOLATION<float, POLYNOM<float>, POINT<float>>;
extern template class LOCAL_INTERPOLATION<double, POLYNOM<double>, POINT<double>>;
extern template class LOCAL_INTERPOLATION<float, POLYNOM_FIT<float>, POINT<float>>;
extern template class LOCAL_INTERPOLATION<double, POLYNOM_FIT<double>, POINT<double>>;
extern template class LOCAL_INTERPOLATION<float, CHEBY_POLY<float>, POINT<float>>;
extern template class LOCAL_INTERPOLATION<double, CHEBY_POLY<double>, POINT<double>>;
extern template class LOCAL_INTERPOLATION<float, HERMITE_POLY<float>, DPOINT<float>>;
extern template class LOCAL_INTERPOLATION<double, HERMITE_POLY<double>, DPOINT<double>>;
