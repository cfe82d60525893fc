/// \file svdcmp.h
/// Singular value decomposition and back-substitution, on matrices addressed from index 1.
/// Source: G. H. Golub and C. Reinsch, "Singular value decomposition and least squares solutions", Numerische
/// Mathematik 14 (1970): Householder bidiagonalisation, then QR steps with implicit shift.

#pragma once

namespace NUMERICS {

/// Decomposes a = U diag(w) V^T; a becomes U.
/// @param a     m x n, finite
/// @param w     n singular values, not negative, in no order
/// @param v     n x n
/// @param work  n elements
/// A singular value that needs more than 30 QR steps: nrerror, which ends the process.
template <class T>
void svdcmp(T** a, int m, int n, T* w, T** v, T* work);

/// Solves U diag(w) V^T x = b in the least-squares sense; directions whose w is zero are left out.
/// @param work  n elements
template <class T>
void svbksb(T** u, const T* w, T** v, int m, int n, const T* b, T* x, T* work);

extern template void svdcmp(float**, int, int, float*, float**, float*);
extern template void svdcmp(double**, int, int, double*, double**, double*);
extern template void svdcmp(long double**, int, int, long double*, long double**, long double*);
extern template void svbksb(float**, const float*, float**, int, int, const float*, float*, float*);
extern template void svbksb(double**, const double*, double**, int, int, const double*, double*, double*);
extern template void svbksb(long double**, const long double*, long double**, int, int, const long double*,
                            long double*, long double*);

}  // namespace NUMERICS
