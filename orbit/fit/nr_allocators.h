/// \file nr_allocators.h
/// Vectors and matrices with a free first index, as the numerical routines are written, and their error routine.
/// A vector over nl..nh has one element of slack before nl; the elements are zero. An empty range (nh = nl - 1) is
/// fine. Out of memory, or a range that cannot be: nrerror, which ends the process.

#pragma once

namespace NUMERICS {

/// Writes message to the log at ALARM and to the standard error stream, and ends the process with exit status 1: deep
/// inside a fit no caller could recover.
[[noreturn]] void nrerror(const char* message);

/// @tparam T  float, double or long double
template <class T>
T* vector(long nl, long nh);
int* ivector(long nl, long nh);
unsigned char* cvector(long nl, long nh);
unsigned long* lvector(long nl, long nh);
double* dvector(long nl, long nh);

/// Rows nrl..nrh, columns ncl..nch, in one block.
template <class T>
T** matrix(long nrl, long nrh, long ncl, long nch);
/// Row pointers into a: its rows oldrl..oldrh, columns from oldcl, seen as rows newrl.. and columns newcl.. .
template <class T>
T** submatrix(T** a, long oldrl, long oldrh, long oldcl, long oldch, long newrl, long newcl);
/// Row pointers into a block of rows x columns elements, seen as rows nrl..nrh and columns ncl..nch.
template <class T>
T** convert_matrix(T* a, long nrl, long nrh, long ncl, long nch);
/// A block of three indices.
template <class T>
T*** f3tensor(long nrl, long nrh, long ncl, long nch, long ndl, long ndh);

/// Release: the same ranges as at allocation; a null pointer is fine. submatrix and convert_matrix leave the elements.
template <class T>
void free_vector(T* v, long nl, long nh);
void free_ivector(int* v, long nl, long nh);
void free_cvector(unsigned char* v, long nl, long nh);
void free_lvector(unsigned long* v, long nl, long nh);
void free_dvector(double* v, long nl, long nh);
template <class T>
void free_matrix(T** m, long nrl, long nrh, long ncl, long nch);
template <class T>
void free_submatrix(T** b, long nrl, long nrh, long ncl, long nch);
template <class T>
void free_convert_matrix(T** b, long nrl, long nrh, long ncl, long nch);
template <class T>
void free_f3tensor(T*** t, long nrl, long nrh, long ncl, long nch, long ndl, long ndh);

}  // namespace NUMERICS
