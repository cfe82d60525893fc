/// \file compiled_orbit.h
/// An orbit's interpolation over a short span of time, turned once into polynomials that give position, velocity and
/// acceleration together: what the inner loops of the simulation ask.
/// Pieces: those of the interpolation itself (ORBIT_BASE::PieceBounds), always whole, each about its own centre: a time
/// has the same answer whatever span was asked for. Position, velocity and acceleration are expanded separately, so
/// that none is the derivative of another's rounding. Accuracy: every piece was held against the orbit when it was
/// built: positions to 1e-9 m plus the rounding of both (an ulp of a satellite's coordinate is 9e-10 m), velocities to
/// 1e-9 m/s, or to the interpolation's own rounding where that is more (everett, 1e-8 m near the ends of the data). A
/// piece that can not be compiled so (single precision, a polynomial of too high a degree) ends the span; questions
/// outside it go to the orbit itself, which takes ten to a hundred times as long. Frame: Earth-fixed, metres, seconds;
/// times as the orbit's own (seconds since its reference time). Threads: constant after construction.

#pragma once

#include <array>
#include <vector>

#include "orbit/general_orbit.h"

/// Component i = sum over k of terms[k][i] (t - centre_s)^k, i: x, y, z of position, then velocity, then acceleration.
struct ORBIT_PIECE {
    static constexpr int kMaxDegree = 23;
    static constexpr int kComponents = 9;
    using TERM = std::array<double, kComponents>;

    double first_s = 0.0;
    double last_s = -1.0;
    double centre_s = 0.0;
    int degree = 0;
    std::array<TERM, kMaxDegree + 1> terms{};

    [[nodiscard]] ORBIT_STATE State(double t_s) const;
};

class COMPILED_ORBIT {
  public:
    /// @param orbit            must outlive the object
    /// @param first_s, last_s  the span that the pieces have to cover, as far as the orbit's data go. What of it can
    /// not
    ///                         be compiled is told at INFO (but not for orbits of single precision: they never can)
    COMPILED_ORBIT(const ORBIT_OF_POOL& orbit, double first_s, double last_s);

    /// As the orbit's own State, for every time; faster inside the compiled span.
    [[nodiscard]] ORBIT_STATE State(double t_s) const;

    /// The piece that answers for a time, or nullptr outside the compiled span. A time at which two pieces meet belongs
    /// to the one that the interpolation itself takes it from: the later one, but for hermite.
    [[nodiscard]] const ORBIT_PIECE* PieceAt(double t_s) const;

    [[nodiscard]] const std::vector<ORBIT_PIECE>& Pieces() const { return pieces_; }

  private:
    void KeepLonger(std::vector<ORBIT_PIECE>& run);
    void SetEnd(const std::vector<double>& bounds);

    const ORBIT_OF_POOL& orbit_;
    std::vector<ORBIT_PIECE> pieces_;  ///< in order of time, without gaps
    double end_s_ = 0.0;               ///< times below it have a piece
};
