#include "orbit/local_interpolation.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "lib/baselib/logging/logging.h"

namespace {

/// Where piece `index` hands over to the next one.
template <class T, class P>
T JointAfter(const ARRAY<P>& points, int index, int point_count) {
    const P* const run = points.Data() + index;
    if (point_count % 2 == 0) return run[point_count / 2].x;
    const T before = run[(point_count - 1) / 2].x;
    const T after = run[(point_count + 1) / 2].x;
    return before + (after - before) / 2;
}

}  // namespace

template <class T, class I, class P>
void LOCAL_INTERPOLATION<T, I, P>::SetOrder(int order) {
    if (order == -1) return;
    I().SetOrder(order);  // the piece's own check
    order_ = order;
}

template <class T, class I, class P>
void LOCAL_INTERPOLATION<T, I, P>::SetSupportPointCount(int support_point_count) {
    if (support_point_count == -1) return;
    if (support_point_count < 1)
        RefuseArgument("LOCAL_INTERPOLATION", "the support point count %d is below 1", support_point_count);
    support_point_count_ = support_point_count;
}

template <class T, class I, class P>
void LOCAL_INTERPOLATION<T, I, P>::Create(const ARRAY<P>& points) {
    pieces_.clear();
    joints_.clear();
    CheckedSupportPoints(points, "LOCAL_INTERPOLATION::Create", SORTED::STRICTLY, true);
    const int point_count = std::min(support_point_count_, points.Count());
    if (point_count < support_point_count_)
        Log().Message(LOGGING_LEVEL::WARNING, "LOCAL_INTERPOLATION: change support_point_count from %d to %d",
                      support_point_count_, point_count);
    const int piece_count = points.Count() - point_count + 1;
    Log().Message(LOGGING_LEVEL::PARAMETER, "LOCAL_INTERPOLATION: polynom count; %d", piece_count);
    pieces_.reserve(static_cast<size_t>(piece_count));
    for (int index = 0; index < piece_count; ++index) CreatePiece(points, index, piece_count, point_count);
}

template <class T, class I, class P>
void LOCAL_INTERPOLATION<T, I, P>::CreatePiece(const ARRAY<P>& points, int index, int piece_count, int point_count) {
    const bool last = index == piece_count - 1;
    const T start = index == 0 ? points.Data()->x : joints_.back();
    const T stop = last ? points.Data()[points.Count() - 1].x : JointAfter<T>(points, index, point_count);
    if (!last) joints_.push_back(stop);
    const int index_start = points.First() + index;
    POLY_REF<T, I, P> piece(index_start, index_start + point_count - 1, start, stop);
    Log().Message(LOGGING_LEVEL::PARAMETER, "idx_start=%d idx_stop=%d t_start=%.15g t_stop=%.15g", piece.IndexStart(),
                  piece.IndexStop(), static_cast<double>(start), static_cast<double>(stop));
    I& interpolator = piece.Interpolator();
    interpolator.SetOrder(order_);
    interpolator.SetSupportPointCount(point_count);
    // All pieces have as many points: what the first one says about order and singular values holds for all.
    if constexpr (requires { interpolator.WarnAboutDropped(true); }) interpolator.WarnAboutDropped(index == 0);
    piece.Create(points);
    if constexpr (requires { interpolator.Order(); }) order_ = interpolator.Order();
    pieces_.push_back(std::move(piece));
}

template <class T, class I, class P>
void LOCAL_INTERPOLATION<T, I, P>::Evaluate(T x, T& value, T& first, T& second) const {
    if (pieces_.size() != joints_.size() + 1)  // none yet, or the last Create failed
        RefuseArgument("LOCAL_INTERPOLATION", "a query at %.17g before there are support points",
                       static_cast<double>(x));
    // A NaN would trap in the search; the first piece answers it as its class does.
    const auto joint = std::isnan(x) ? joints_.begin() : std::upper_bound(joints_.begin(), joints_.end(), x);
    pieces_[static_cast<size_t>(joint - joints_.begin())].Interpolator().Evaluate(x, value, first, second);
}

template class LOCAL_INTERPOLATION<float, POLYNOM<float>, POINT<float>>;
template class LOCAL_INTERPOLATION<double, POLYNOM<double>, POINT<double>>;
template class LOCAL_INTERPOLATION<float, POLYNOM_FIT<float>, POINT<float>>;
template class LOCAL_INTERPOLATION<double, POLYNOM_FIT<double>, POINT<double>>;
template class LOCAL_INTERPOLATION<float, CHEBY_POLY<float>, POINT<float>>;
template class LOCAL_INTERPOLATION<double, CHEBY_POLY<double>, POINT<double>>;
template class LOCAL_INTERPOLATION<float, HERMITE_POLY<float>, DPOINT<float>>;
template class LOCAL_INTERPOLATION<double, HERMITE_POLY<double>, DPOINT<double>>;
