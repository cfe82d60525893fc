#include "orbit/interpolation/local_interpolation.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "lib/baselib/logging/logging.h"

namespace {

/// Where piece `index` hands over to the next one.
double JointAfter(const SUPPORT_POINTS& points, int index, int point_count) {
    const double* const run = points.x.data() + index;
    if (point_count % 2 == 0) return run[point_count / 2];
    return Midway(run[(point_count - 1) / 2], run[(point_count + 1) / 2], points.is_float);
}

}  // namespace

void LOCAL_CORE::SetOrder(int order) {
    if (order == -1) return;
    make_()->SetOrder(order);  // the piece's own check
    order_ = order;
}

void LOCAL_CORE::SetSupportPointCount(int support_point_count) {
    if (support_point_count == -1) return;
    if (support_point_count < 1)
        RefuseArgument("LOCAL_INTERPOLATION", "the support point count %d is below 1", support_point_count);
    support_point_count_ = support_point_count;
}

void LOCAL_CORE::Create(const SUPPORT_POINTS& points) {
    pieces_ = std::make_shared<std::vector<PIECE>>();
    joints_.clear();
    CheckSupportPoints(points, "LOCAL_INTERPOLATION::Create", SORTED::STRICTLY, true);
    const int point_count = std::min(support_point_count_, points.Count());
    if (point_count < support_point_count_)
        Log().Message(LOGGING_LEVEL::WARNING, "LOCAL_INTERPOLATION: change support_point_count from %d to %d",
                      support_point_count_, point_count);
    const int piece_count = points.Count() - point_count + 1;
    Log().Message(LOGGING_LEVEL::PARAMETER, "LOCAL_INTERPOLATION: polynom count; %d", piece_count);
    pieces_->reserve(static_cast<size_t>(piece_count));
    for (int index = 0; index < piece_count; ++index) CreatePiece(points, index, piece_count, point_count);
}

void LOCAL_CORE::CreatePiece(const SUPPORT_POINTS& points, int index, int piece_count, int point_count) {
    const bool last = index == piece_count - 1;
    const double start = index == 0 ? points.x.front() : joints_.back();
    const double stop = last ? points.x.back() : JointAfter(points, index, point_count);
    if (!last) joints_.push_back(stop);
    const int index_start = points.first_index + index;
    PIECE piece(index_start, index_start + point_count - 1, start, stop);
    Log().Message(LOGGING_LEVEL::PARAMETER, "idx_start=%d idx_stop=%d t_start=%.15g t_stop=%.15g", piece.IndexStart(),
                  piece.IndexStop(), start, stop);
    std::unique_ptr<INTERPOLATOR> interpolator = make_();
    interpolator->SetOrder(order_);
    interpolator->SetSupportPointCount(point_count);
    // All pieces have as many points: what the first one says about order and singular values holds for all.
    interpolator->WarnAboutDropped(index == 0);
    piece.Create(std::move(interpolator), points);
    order_ = piece.Interpolator().Order();
    pieces_->push_back(std::move(piece));
}

JET LOCAL_CORE::At(double x) const {
    if (pieces_ == nullptr || pieces_->size() != joints_.size() + 1)  // none yet, or the last Create failed
        RefuseArgument("LOCAL_INTERPOLATION", "a query at %.17g before there are support points", x);
    // A NaN would trap in the search; the first piece answers it as its class does.
    const auto joint = std::isnan(x) ? joints_.begin() : std::upper_bound(joints_.begin(), joints_.end(), x);
    return (*pieces_)[static_cast<size_t>(joint - joints_.begin())].Interpolator().At(x);
}

template class LOCAL_INTERPOLATION<float, POLYNOM<float>, POINT<float>>;
template class LOCAL_INTERPOLATION<double, POLYNOM<double>, POINT<double>>;
template class LOCAL_INTERPOLATION<float, POLYNOM_FIT<float>, POINT<float>>;
template class LOCAL_INTERPOLATION<double, POLYNOM_FIT<double>, POINT<double>>;
template class LOCAL_INTERPOLATION<float, CHEBY_POLY<float>, POINT<float>>;
template class LOCAL_INTERPOLATION<double, CHEBY_POLY<double>, POINT<double>>;
template class LOCAL_INTERPOLATION<float, HERMITE_POLY<float>, DPOINT<float>>;
template class LOCAL_INTERPOLATION<double, HERMITE_POLY<double>, DPOINT<double>>;
