#include "orbit/interpolation.h"

#include "lib/baselib/logging/logging.h"

template <class T, class P>
void INTERPOLATION<T, P>::Create(const ARRAY<P>& points, int order, int support_point_count) {
    SetOrder(order);
    SetSupportPointCount(support_point_count);
    Create(points);
}

template <class T, class P>
void INTERPOLATION<T, P>::SetOrder(int) {}

template <class T, class P>
void INTERPOLATION<T, P>::SetSupportPointCount(int) {}

template <class T, class P>
T INTERPOLATION<T, P>::Value(T x) const {
    T value{}, first{}, second{};
    Evaluate(x, value, first, second);
    return value;
}

template <class T, class P>
T INTERPOLATION<T, P>::FirstDerivative(T x) const {
    T value{}, first{}, second{};
    Evaluate(x, value, first, second);
    return first;
}

template <class T, class P>
T INTERPOLATION<T, P>::SecondDerivative(T x) const {
    T value{}, first{}, second{};
    Evaluate(x, value, first, second);
    return second;
}

template <class T, class P>
ARRAY<T> INTERPOLATION<T, P>::GetCoeffs() const {
    Log() << LOGGING_LEVEL::INFO << "INTERPOLATION::GetCoeffs() shall not be called\n";
    return {};
}

template class INTERPOLATION<float, POINT<float>>;
template class INTERPOLATION<double, POINT<double>>;
template class INTERPOLATION<long double, POINT<long double>>;
template class INTERPOLATION<float, DPOINT<float>>;
template class INTERPOLATION<double, DPOINT<double>>;
