#include "orbit/interpolation/interpolation.h"

#include <algorithm>
#include <limits>
#include <type_traits>

#include "lib/baselib/logging/logging.h"

std::vector<long double> INTERPOLATOR::Coefficients() const {
    Log() << LOGGING_LEVEL::INFO << "INTERPOLATION::GetCoeffs() shall not be called\n";
    return {};
}

template <class T, class P>
void INTERPOLATION<T, P>::Create(const ARRAY<P>& points, int order, int support_point_count) {
    SetOrder(order);
    SetSupportPointCount(support_point_count);
    Create(points);
}

template <class T, class P>
void INTERPOLATION<T, P>::Create(const ARRAY<P>& points) {
    std::vector<double> x, y, slope;
    for (const P& point : points) {
        x.push_back(static_cast<double>(point.x));
        y.push_back(static_cast<double>(point.y));
        if constexpr (requires { point.dy; }) slope.push_back(static_cast<double>(point.dy));
    }
    Core().Create({x, y, slope, std::is_same_v<T, float>, points.First()});
}

template <class T, class P>
void INTERPOLATION<T, P>::SetOrder(int order) {
    Core().SetOrder(order);
}

template <class T, class P>
void INTERPOLATION<T, P>::SetSupportPointCount(int support_point_count) {
    Core().SetSupportPointCount(support_point_count);
}

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
    constexpr long double kLargest = std::numeric_limits<T>::max();
    const std::vector<long double> given = Core().Coefficients();
    ARRAY<T> coefficients(0, static_cast<int>(given.size()));
    for (size_t i = 0; i < given.size(); ++i)
        coefficients.Data()[i] = static_cast<T>(std::clamp(given[i], -kLargest, kLargest));
    return coefficients;
}

template <class T, class P>
void INTERPOLATION<T, P>::Evaluate(T x, T& value, T& first, T& second) const {
    JET jet = Core().At(static_cast<double>(x));
    if constexpr (std::is_same_v<T, float>) jet = RoundedToFloat(jet, Core().Name());
    value = static_cast<T>(jet.value);
    first = static_cast<T>(jet.first);
    second = static_cast<T>(jet.second);
}

template class INTERPOLATION<float, POINT<float>>;
template class INTERPOLATION<double, POINT<double>>;
template class INTERPOLATION<long double, POINT<long double>>;
template class INTERPOLATION<float, DPOINT<float>>;
template class INTERPOLATION<double, DPOINT<double>>;
template class INTERPOLATION<long double, DPOINT<long double>>;
