/// \file local_pieces.h
/// The pieces of a local interpolation. Up to 256 are made at once; of more, which stand for hours of data, only those
/// that a scene asks for: each costs half a millisecond and its lines in the log.
/// Threads: For may be called from any; the first call for a piece that is not there yet takes a lock and allocates.

#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

#include "orbit/interpolation/interpolator.h"
#include "orbit/interpolation/poly_ref.h"

class LOCAL_PIECES {
  public:
    using PIECE = POLY_REF<double, INTERPOLATOR, SUPPORT_POINTS>;
    static constexpr int kMostMadeAtOnce = 256;

    struct PARAMETERS {
        std::unique_ptr<INTERPOLATOR> (*make)();  ///< of a piece
        int order;                                ///< -1: the interpolator's own
        int point_count;                          ///< of a piece, at most that of all points
    };

    /// @throws as the interpolator's Create
    LOCAL_PIECES(const SUPPORT_POINTS& points, const PARAMETERS& parameters);

    /// The interpolator of the piece that answers for x. @throws as the interpolator's Create
    [[nodiscard]] const INTERPOLATOR& For(double x);

    [[nodiscard]] int Count() const { return static_cast<int>(pieces_.size()); }
    /// The piece, made if it was not.
    [[nodiscard]] const PIECE& Piece(int index);
    /// As the first piece has lowered it.
    [[nodiscard]] int Order() const { return parameters_.order; }

  private:
    void Make(size_t index);

    PARAMETERS parameters_;
    std::vector<double> x_, y_, slope_;
    SUPPORT_POINTS points_;       ///< all of them, views of the lists above
    std::vector<double> joints_;  ///< joint i between piece i and i + 1
    std::vector<PIECE> pieces_;
    std::vector<std::atomic<bool>> is_made_;  ///< per piece; set after it is whole
    std::mutex making_;
};
