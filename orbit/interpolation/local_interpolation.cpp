#include "orbit/interpolation/local_interpolation.h"

#include <algorithm>

#include "lib/baselib/logging/logging.h"

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
    pieces_.reset();
    CheckSupportPoints(points, "LOCAL_INTERPOLATION::Create", SORTED::STRICTLY, true);
    const int point_count = std::min(support_point_count_, points.Count());
    if (point_count < support_point_count_)
        Log().Message(LOGGING_LEVEL::WARNING, "LOCAL_INTERPOLATION: change support_point_count from %d to %d",
                      support_point_count_, point_count);
    pieces_ = std::make_shared<LOCAL_PIECES>(points, LOCAL_PIECES::PARAMETERS{make_, order_, point_count});
    order_ = pieces_->Order();
}

JET LOCAL_CORE::At(double x) const {
    if (pieces_ == nullptr)  // none yet, or the last Create failed
        RefuseArgument("LOCAL_INTERPOLATION", "a query at %.17g before there are support points", x);
    return pieces_->For(x).At(x);
}

template class LOCAL_INTERPOLATION<float, POLYNOM<float>, POINT<float>>;
template class LOCAL_INTERPOLATION<double, POLYNOM<double>, POINT<double>>;
template class LOCAL_INTERPOLATION<float, POLYNOM_FIT<float>, POINT<float>>;
template class LOCAL_INTERPOLATION<double, POLYNOM_FIT<double>, POINT<double>>;
template class LOCAL_INTERPOLATION<float, CHEBY_POLY<float>, POINT<float>>;
template class LOCAL_INTERPOLATION<double, CHEBY_POLY<double>, POINT<double>>;
template class LOCAL_INTERPOLATION<float, HERMITE_POLY<float>, DPOINT<float>>;
template class LOCAL_INTERPOLATION<double, HERMITE_POLY<double>, DPOINT<double>>;
