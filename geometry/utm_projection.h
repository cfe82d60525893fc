/// \file utm_projection.h
/// Universal transverse Mercator map coordinates on any ellipsoid.
/// Range: the inverse series holds to 1 mm within 3 degrees of the central meridian; outside, its error grows about as
/// the 7th power of the difference in longitude. Forward is the inverse of Inverse, not an independent series, so that
/// a round trip closes even where the series has lost its accuracy.
/// Units: radians and metres. Threads: constant after construction.
/// Source: J. P. Snyder, Map Projections - A Working Manual, USGS Professional Paper 1395 (1987), eqs. 8-9 to 8-25,
/// 3-26.

#pragma once

/// Bound of the error in either direction for |longitude - central meridian| <= 3 degrees, latitude -80..84 (measured
/// against a series of higher order: 0.39 mm).
inline constexpr double kUtmErrorMetres = 5e-4;

inline constexpr double kUtmScale = 0.9996;
inline constexpr double kUtmFalseEastingMetres = 500000.0;
inline constexpr double kUtmFalseNorthingSouthMetres = 10000000.0;

struct MAP_POSITION {
    double easting_m = 0.0;
    double northing_m = 0.0;
};

struct MAP_GEOGRAPHIC {
    double longitude_rad = 0.0;  ///< -pi..pi
    double latitude_rad = 0.0;
};

/// The inverse series along one line of constant northing, in d = (easting - false easting) arc_per_metre:
///   latitude = footpoint - (c0 d^2 + c1 d^4 + c2 d^6), longitude = central meridian + l0 d + l1 d^3 + l2 d^5.
struct UTM_INVERSE_ROW {
    double footpoint_rad;
    double arc_per_metre;
    double c[3];
    double l[3];
};

class UTM_PROJECTION {
  public:
    /// @param zone  1 to 60; the central meridian is 6 zone - 183 degrees. The caller has checked it.
    UTM_PROJECTION(double a_m, double e2, int zone, bool southern_hemisphere);

    [[nodiscard]] MAP_GEOGRAPHIC Inverse(const MAP_POSITION& position) const;

    /// What Inverse has in common for all positions of one northing; the folding of longitudes into one turn and of
    /// latitudes beyond a pole is left to the caller.
    [[nodiscard]] UTM_INVERSE_ROW InverseRow(double northing_m) const;

    [[nodiscard]] double CentralMeridian() const { return central_meridian_rad_; }
    [[nodiscard]] double FalseEasting() const { return false_easting_m_; }

    /// The map position whose Inverse is the given point, to 1e-6 m within 6 degrees of the central meridian; farther
    /// away the forward series alone, a usable approximation for finding out that a point is off the map. Longitudes
    /// may be given in any turn.
    [[nodiscard]] MAP_POSITION Forward(const MAP_GEOGRAPHIC& position) const;

  private:
    [[nodiscard]] MAP_POSITION ForwardSeries(const MAP_GEOGRAPHIC& position) const;
    [[nodiscard]] double MeridianDistance(double latitude_rad) const;

    double a_m_;
    double e2_;
    double ep2_;  ///< second eccentricity squared
    double scale_ = kUtmScale;
    double central_meridian_rad_;
    double origin_meridian_distance_m_ = 0.0;  ///< the latitude of origin is the equator
    double false_easting_m_ = kUtmFalseEastingMetres;
    double false_northing_m_;
    double rectifying_radius_m_;
    double footpoint_[4];
};
