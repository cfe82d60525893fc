/// \file basis_functions.h
/// The basis functions of the least-squares fits.

#pragma once

/// The monomials 1, x, x^2, ..., x^(ma - 1).
template <class T>
struct POLYNOM_FUNCTION {
    /// @param basis  filled from index 1 to ma
    static void Fill(T x, T* basis, int ma) {
        for (int j = 1; j <= ma; ++j) basis[j] = j == 1 ? T{1} : basis[j - 1] * x;
    }
};

/// The Chebyshev polynomials T0 = 1, T1 = x, T(k+1) = 2 x T(k) - T(k-1); x in -1..1.
template <class T>
struct CHEBY_POLY_FUNCTION {
    static void Fill(T x, T* basis, int ma) {
        for (int j = 1; j <= ma; ++j) basis[j] = j == 1 ? T{1} : j == 2 ? x : 2 * x * basis[j - 1] - basis[j - 2];
    }
};
