#include "orbit/fit/nr_allocators.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "lib/baselib/logging/logging.h"
#include "lib/baselib/mem_allocation/mem_alloc_implementation.h"

namespace NUMERICS {

namespace {

constexpr long kSlack = 1;

/// The pointer p for which p[index] is *element. It may lie outside the block, which plain pointer arithmetic does not
/// allow: hence the address as an integer.
template <class T>
T* Indexed(T* element, long index) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    return reinterpret_cast<T*>(reinterpret_cast<std::uintptr_t>(element) -
                                static_cast<std::uintptr_t>(index) * sizeof(T));
}

/// The block of a vector whose first index is nl.
template <class T>
T* Block(T* v, long nl) {
    return Indexed(v, -(nl - kSlack));
}

/// Elements of a range; -1 when there are too many to count or less than none.
long CountOf(long first, long last) {
    long count = 0;
    if (__builtin_sub_overflow(last, first, &count) || __builtin_add_overflow(count, 1, &count) || count < 0) return -1;
    return count;
}

template <class T>
T* NewBlock(long count, const char* message) {
    T* block = nullptr;
    if (count >= 0 && count <= PTRDIFF_MAX / static_cast<long>(sizeof(T)) - kSlack)
        block = static_cast<T*>(std::calloc(static_cast<std::size_t>(count + kSlack), sizeof(T)));
    if (block == nullptr) {
        MEM_ALLOCATION::TellNewHandler();
        nrerror(message);
    }
    return block;
}

template <class T>
T* NewVector(long nl, long nh, const char* message) {
    return Indexed(NewBlock<T>(CountOf(nl, nh), message) + kSlack, nl);
}

template <class T>
void FreeVector(T* v, long nl) {
    if (v != nullptr) std::free(Block(v, nl));
}

/// @param a  not negative
long ProductOrFail(long a, long b) {
    long product = 0;
    return b < 0 || __builtin_mul_overflow(a, b, &product) ? -1 : product;
}

}  // namespace

void nrerror(const char* message) {
    LOGGING::EmergencyLine(LOGGING_LEVEL::ALARM, message);
    std::fprintf(stderr, "Numerical Recipes run-time error...\n%s\n...now exiting to system...\n", message);
    HardStop();
}

template <class T>
T* vector(long nl, long nh) {
    return NewVector<T>(nl, nh, "allocation failure in vector()");
}
int* ivector(long nl, long nh) {
    return NewVector<int>(nl, nh, "allocation failure in ivector()");
}
unsigned char* cvector(long nl, long nh) {
    return NewVector<unsigned char>(nl, nh, "allocation failure in cvector()");
}
unsigned long* lvector(long nl, long nh) {
    return NewVector<unsigned long>(nl, nh, "allocation failure in lvector()");
}
double* dvector(long nl, long nh) {
    return NewVector<double>(nl, nh, "allocation failure in dvector()");
}

template <class T>
T** matrix(long nrl, long nrh, long ncl, long nch) {
    T** const rows = NewVector<T*>(nrl, nrh, "allocation failure 1 in matrix()");
    const long columns = CountOf(ncl, nch);
    T* const block = NewBlock<T>(ProductOrFail(CountOf(nrl, nrh), columns), "allocation failure 2 in matrix()");
    Block(rows, nrl)[0] = block;  // kept in the slack, so that the block is found again when there are no rows
    for (long row = nrl; row <= nrh; ++row) rows[row] = Indexed(block + kSlack + (row - nrl) * columns, ncl);
    return rows;
}

template <class T>
T** submatrix(T** a, long oldrl, long oldrh, long oldcl, long, long newrl, long newcl) {
    const long newrh = newrl + (oldrh - oldrl);
    T** const rows = NewVector<T*>(newrl, newrh, "allocation failure in submatrix()");
    for (long row = newrl; row <= newrh; ++row) rows[row] = Indexed(&a[oldrl + (row - newrl)][oldcl], newcl);
    return rows;
}

template <class T>
T** convert_matrix(T* a, long nrl, long nrh, long ncl, long nch) {
    T** const rows = NewVector<T*>(nrl, nrh, "allocation failure in convert_matrix()");
    const long columns = nch - ncl + 1;
    for (long row = nrl; row <= nrh; ++row) rows[row] = Indexed(a + (row - nrl) * columns, ncl);
    return rows;
}

template <class T>
T*** f3tensor(long nrl, long nrh, long ncl, long nch, long ndl, long ndh) {
    const long columns = CountOf(ncl, nch);
    const long depth = CountOf(ndl, ndh);
    T*** const rows = NewVector<T**>(nrl, nrh, "allocation failure 1 in f3tensor()");
    const long links = ProductOrFail(CountOf(nrl, nrh), columns);
    T** const link_block = NewBlock<T*>(links, "allocation failure 2 in f3tensor()");
    T* const block = NewBlock<T>(ProductOrFail(links, depth), "allocation failure 3 in f3tensor()");
    Block(rows, nrl)[0] = link_block;
    link_block[0] = block;
    for (long row = nrl; row <= nrh; ++row) {
        rows[row] = Indexed(link_block + kSlack + (row - nrl) * columns, ncl);
        for (long column = ncl; column <= nch; ++column)
            rows[row][column] = Indexed(block + kSlack + ((row - nrl) * columns + (column - ncl)) * depth, ndl);
    }
    return rows;
}

template <class T>
void free_vector(T* v, long nl, long) {
    FreeVector(v, nl);
}
void free_ivector(int* v, long nl, long) {
    FreeVector(v, nl);
}
void free_cvector(unsigned char* v, long nl, long) {
    FreeVector(v, nl);
}
void free_lvector(unsigned long* v, long nl, long) {
    FreeVector(v, nl);
}
void free_dvector(double* v, long nl, long) {
    FreeVector(v, nl);
}

template <class T>
void free_matrix(T** m, long nrl, long, long, long) {
    if (m == nullptr) return;
    std::free(Block(m, nrl)[0]);
    FreeVector(m, nrl);
}

template <class T>
void free_submatrix(T** b, long nrl, long, long, long) {
    FreeVector(b, nrl);
}

template <class T>
void free_convert_matrix(T** b, long nrl, long, long, long) {
    FreeVector(b, nrl);
}

template <class T>
void free_f3tensor(T*** t, long nrl, long, long, long, long, long) {
    if (t == nullptr) return;
    T** const link_block = Block(t, nrl)[0];
    std::free(link_block[0]);
    std::free(link_block);
    FreeVector(t, nrl);
}

template float* vector<float>(long, long);
template float** matrix<float>(long, long, long, long);
template float** submatrix(float**, long, long, long, long, long, long);
template float** convert_matrix(float*, long, long, long, long);
template float*** f3tensor<float>(long, long, long, long, long, long);
template void free_vector(float*, long, long);
template void free_matrix(float**, long, long, long, long);
template void free_submatrix(float**, long, long, long, long);
template void free_convert_matrix(float**, long, long, long, long);
template void free_f3tensor(float***, long, long, long, long, long, long);

template double* vector<double>(long, long);
template double** matrix<double>(long, long, long, long);
template double** submatrix(double**, long, long, long, long, long, long);
template double** convert_matrix(double*, long, long, long, long);
template double*** f3tensor<double>(long, long, long, long, long, long);
template void free_vector(double*, long, long);
template void free_matrix(double**, long, long, long, long);
template void free_submatrix(double**, long, long, long, long);
template void free_convert_matrix(double**, long, long, long, long);
template void free_f3tensor(double***, long, long, long, long, long, long);

template long double* vector<long double>(long, long);
template long double** matrix<long double>(long, long, long, long);
template long double** submatrix(long double**, long, long, long, long, long, long);
template long double** convert_matrix(long double*, long, long, long, long);
template long double*** f3tensor<long double>(long, long, long, long, long, long);
template void free_vector(long double*, long, long);
template void free_matrix(long double**, long, long, long, long);
template void free_submatrix(long double**, long, long, long, long);
template void free_convert_matrix(long double**, long, long, long, long);
template void free_f3tensor(long double***, long, long, long, long, long, long);

}  // namespace NUMERICS
