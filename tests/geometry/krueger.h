/// \file krueger.h
/// Transverse Mercator by Krueger's series to the 6th order in the third flattening: nanometres within 3000 km of the
/// central meridian, and built differently from the series under test.
/// Source: C. F. F. Karney, Transverse Mercator with an accuracy of a few nanometers, J. Geodesy 85 (2011), eqs. 7-9,
/// 12, 35.

#pragma once

#include <cmath>
#include <complex>

struct KRUEGER_POSITION {
    double easting_m;   ///< from the central meridian, without scale
    double northing_m;  ///< from the equator, without scale
};

inline KRUEGER_POSITION KruegerForward(double a_m, double e2, double delta_longitude_rad, double latitude_rad) {
    using REAL = long double;
    const REAL e = std::sqrt(static_cast<REAL>(e2));
    const REAL f = 1 - std::sqrt(1 - static_cast<REAL>(e2));
    const REAL n = f / (2 - f);
    const REAL n2 = n * n, n3 = n2 * n, n4 = n3 * n, n5 = n4 * n, n6 = n5 * n;
    const REAL rectifying_m = a_m / (1 + n) * (1 + n2 / 4 + n4 / 64 + n6 / 256);
    const REAL alpha[] = {
        n / 2 - 2 * n2 / 3 + 5 * n3 / 16 + 41 * n4 / 180 - 127 * n5 / 288 + 7891 * n6 / 37800,
        13 * n2 / 48 - 3 * n3 / 5 + 557 * n4 / 1440 + 281 * n5 / 630 - 1983433 * n6 / 1935360,
        61 * n3 / 240 - 103 * n4 / 140 + 15061 * n5 / 26880 + 167603 * n6 / 181440,
        49561 * n4 / 161280 - 179 * n5 / 168 + 6601661 * n6 / 7257600,
        34729 * n5 / 80640 - 3418889 * n6 / 1995840,
        212378941 * n6 / 319334400,
    };
    const REAL lambda = delta_longitude_rad;
    const REAL tau = std::tan(static_cast<REAL>(latitude_rad));
    const REAL sigma = std::sinh(e * std::atanh(e * tau / std::sqrt(1 + tau * tau)));
    const REAL tau1 = tau * std::sqrt(1 + sigma * sigma) - sigma * std::sqrt(1 + tau * tau);
    const std::complex<REAL> zeta1(std::atan2(tau1, std::cos(lambda)),
                                   std::asinh(std::sin(lambda) / std::hypot(tau1, std::cos(lambda))));
    std::complex<REAL> zeta = zeta1;
    for (int j = 0; j < 6; ++j) zeta += alpha[j] * std::sin(static_cast<REAL>(2 * (j + 1)) * zeta1);
    return {static_cast<double>(rectifying_m * zeta.imag()), static_cast<double>(rectifying_m * zeta.real())};
}
