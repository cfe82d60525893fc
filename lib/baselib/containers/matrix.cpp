#include "lib/baselib/containers/matrix.h"

#include "lib/baselib/containers/string.h"

template class MATRIX<unsigned char>;
template class MATRIX<char>;
template class MATRIX<signed char>;
template class MATRIX<short>;
template class MATRIX<int>;
template class MATRIX<float>;
template class MATRIX<double>;
template class MATRIX<long double>;
template class MATRIX<COMPLEX<float>>;
template class MATRIX<COMPLEX<double>>;
template class MATRIX<STRING>;
