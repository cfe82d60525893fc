/// \file gaussj.h
/// Gauss-Jordan elimination with full pivoting, on matrices addressed from index 1.

#pragma once

namespace NUMERICS {

/// Solves a x = b for m right-hand sides; a becomes its inverse, b the solutions. O(n^3).
/// @param a  n x n
/// @param b  n x m
/// No usable pivot left (an element that is not finite): nrerror "gaussj: Singular Matrix-1"; a pivot of zero: nrerror
/// "gaussj: Singular Matrix-2". Both end the process.
template <class T>
void gaussj(T** a, int n, T** b, int m);

extern template void gaussj(float**, int, float**, int);
extern template void gaussj(double**, int, double**, int);

}  // namespace NUMERICS
