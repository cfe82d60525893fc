#include "orbit/sampled_orbit.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <typeinfo>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/logging/logging.h"
#include "orbit/samples/check_table.h"

namespace {

ANY_TIME NoTime(TIME_KIND kind) {
    if (kind == TIME_KIND::UTC) return UNIVERSAL_TIME{};
    if (kind == TIME_KIND::MET) return MISSION_ELAPSED_TIME{};
    return 0.0;
}

}  // namespace

SAMPLED_ORBIT::SAMPLED_ORBIT(const ORBIT_TRAITS& traits) : traits_(traits), reference_(NoTime(traits.numbers.times)) {}
SAMPLED_ORBIT::SAMPLED_ORBIT(const SAMPLED_ORBIT&) = default;
SAMPLED_ORBIT::~SAMPLED_ORBIT() = default;

const ORBIT_SAMPLES& SAMPLED_ORBIT::Samples() const {
    if (samples_ == nullptr) RefuseCoreObject();
    return *samples_;
}

JET SAMPLED_ORBIT::AxisAt(size_t axis, double sample_time_s) const {
    const INTERPOLATOR& interpolator = *(*axes_)[axis];
    const JET jet = interpolator.At(sample_time_s);
    return traits_.numbers.is_float ? RoundedToFloat(jet, interpolator.Name()) : jet;
}

ORBIT_STATE SAMPLED_ORBIT::State(double t_s) const {
    if (samples_ == nullptr) RefuseCoreObject();
    double at_s = SampleTime(t_s);
    if (traits_.numbers.is_float) {
        constexpr double kFarOutside_s = 1e30;  // the interpolators refuse it, the conversion to float would trap
        at_s = static_cast<float>(std::clamp(at_s, -kFarOutside_s, kFarOutside_s));
    }
    if (EndsOutsideItsData()) ReportOutside(at_s);
    const JET x = AxisAt(0, at_s);
    const JET y = AxisAt(1, at_s);
    const JET z = AxisAt(2, at_s);
    return {{x.value, y.value, z.value}, {x.first, y.first, z.first}, {x.second, y.second, z.second}};
}

void SAMPLED_ORBIT::ReportOutside(double sample_time_s) const {
    const double first_s = samples_->t_s.front();
    const double last_s = samples_->t_s.back();
    // Quiet comparisons: a NaN is outside, without a trap.
    if (std::isgreaterequal(sample_time_s, first_s) && std::islessequal(sample_time_s, last_s)) return;
    const double after_s = samples_->zero.after_s;
    Log().Message(LOGGING_LEVEL::ALARM,
                  "%s: %s is asked for %.6f s after the reference time, but the state vectors reach from %.6f s to "
                  "%.6f s: it does not go beyond them, and the simulated area lies wider than the image",
                  Configuration().pool_file.c_str(), Configuration().interpolation.c_str(), sample_time_s + after_s,
                  first_s + after_s, last_s + after_s);
}

double SAMPLED_ORBIT::FirstTime() const {
    const double first_s = Samples().t_s.front();
    double t_s = first_s - SampleTime(0.0);
    while (SampleTime(t_s) < first_s) t_s = std::nextafter(t_s, std::numeric_limits<double>::infinity());
    return t_s;
}

double SAMPLED_ORBIT::LastTime() const {
    const double last_s = Samples().t_s.back();
    double t_s = last_s - SampleTime(0.0);
    while (SampleTime(t_s) > last_s) t_s = std::nextafter(t_s, -std::numeric_limits<double>::infinity());
    return t_s;
}

/// State vectors and the middles between them: whatever the interpolator, it hands over nowhere else.
std::vector<double> SAMPLED_ORBIT::PieceBounds() const {
    const std::vector<double>& t_s = Samples().t_s;
    std::vector<double> bounds = {FirstTime()};
    for (size_t i = 1; i < t_s.size(); ++i) {
        bounds.push_back(Midway(t_s[i - 1], t_s[i], samples_->is_float) - SampleTime(0.0));
        bounds.push_back(t_s[i] - SampleTime(0.0));
    }
    bounds.back() = LastTime();
    return bounds;
}

double SAMPLED_ORBIT::CountFromNearbySecond() {
    return zero_after_s_ = Samples().zero.after_s;
}

int SAMPLED_ORBIT::StateVectorCount() const {
    return samples_ == nullptr ? 0 : static_cast<int>(samples_->Count());
}

void SAMPLED_ORBIT::SetReferenceTime(const ANY_TIME& time) {
    if (samples_ != nullptr) {
        LogAndThrow<ERROR_ARGUMENT>(
            "ORBIT: the reference time can not become %s: it would move the %zu state vectors read with %s",
            TextOf(time).c_str(), samples_->Count(), TextOf(reference_).c_str());
    }
    if (time.index() != reference_.index()) {
        LogAndThrow<ERROR_ARGUMENT>("ORBIT: the reference time %s is %s, but the times of %s are %s",
                                    TextOf(time).c_str(), KindOf(time), TextOf(TypeId()), KindOf(reference_));
    }
    reference_ = time;
}

void SAMPLED_ORBIT::SavePolynomial(const std::string& file_name) const {
    CHECK_TABLE table(file_name);
    for (size_t i = 0; samples_ != nullptr && i < samples_->Count(); ++i) {
        const double t_s = samples_->t_s[i];
        const VECTOR_3D<double> interpolated_m = {AxisAt(0, t_s).value, AxisAt(1, t_s).value, AxisAt(2, t_s).value};
        table.AddLine(samples_->zero.after_s + t_s, samples_->Position_m(i), interpolated_m);
    }
    table.Close();
}

void SAMPLED_ORBIT::CopyFrom(const ORBIT_BASE& other, const char* signature) {
    if (typeid(*this) != typeid(other)) RefuseAssignment(signature);
    const auto& same_type = static_cast<const SAMPLED_ORBIT&>(other);
    CopySetupFrom(same_type);
    reference_ = same_type.reference_;
    zero_after_s_ = same_type.zero_after_s_;
    samples_ = same_type.samples_;
    axes_ = same_type.axes_;
}

SAMPLED_ORBIT::AXES SAMPLED_ORBIT::MakeAxes(const ORBIT_SAMPLES& samples) const {
    AXES axes;
    for (size_t i = 0; i < axes.size(); ++i) {
        axes[i] = traits_.make_interpolator();
        axes[i]->SetOrder(Interpolation().poly_fit_order);
        axes[i]->SetSupportPointCount(Interpolation().support_point_count);
        axes[i]->Create(samples.Axis(i));
    }
    return axes;
}

void SAMPLED_ORBIT::TakeOver(const STATE_VECTOR_LISTS& lists) {
    const ORBIT_SAMPLES samples = SamplesOf(lists, reference_, traits_.numbers.is_float, Interpolation());
    try {
        axes_ = std::make_shared<const AXES>(MakeAxes(samples));
    } catch (const ERROR_PROCESSING&) {  // memory that is short is no fault of the entry
        Log().Message(
            LOGGING_LEVEL::ALARM,
            "%s: key \"orbit_interpolation\": value \"%s\" does not suit the %zu state vectors at key \"%s\" of %s",
            Configuration().pool_file.c_str(), Configuration().interpolation.c_str(), samples.Count(),
            lists.time_key.c_str(), lists.file.c_str());
        throw;
    }
    samples_ = std::make_shared<const ORBIT_SAMPLES>(samples);
    zero_after_s_ = 0.0;
}
