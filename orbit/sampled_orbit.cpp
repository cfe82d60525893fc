#include "orbit/sampled_orbit.h"

#include <algorithm>
#include <new>
#include <typeinfo>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"
#include "orbit/samples/check_table.h"

namespace {

ANY_TIME ZeroOf(TIME_KIND kind) {
    if (kind == TIME_KIND::UTC) return UNIVERSAL_TIME{};
    if (kind == TIME_KIND::MET) return MISSION_ELAPSED_TIME{};
    return 0.0;
}

}  // namespace

SAMPLED_ORBIT::SAMPLED_ORBIT(const ORBIT_TRAITS& traits) : traits_(traits), reference_(ZeroOf(traits.numbers.times)) {}
SAMPLED_ORBIT::SAMPLED_ORBIT(const SAMPLED_ORBIT&) = default;
SAMPLED_ORBIT::~SAMPLED_ORBIT() = default;

const ORBIT_SAMPLES& SAMPLED_ORBIT::Samples() const {
    if (samples_ == nullptr) RefuseCoreObject();
    return *samples_;
}

JET SAMPLED_ORBIT::AxisAt(size_t axis, double t_s) const {
    const INTERPOLATOR& interpolator = *(*axes_)[axis];
    const JET jet = interpolator.At(t_s);
    return traits_.numbers.is_float ? RoundedToFloat(jet, interpolator.Name()) : jet;
}

ORBIT_STATE SAMPLED_ORBIT::State(double t_s) const {
    if (samples_ == nullptr) RefuseCoreObject();
    double at_s = t_s;
    if (traits_.numbers.is_float) {
        constexpr double kFarOutside_s = 1e30;  // the interpolators refuse it, the conversion to float would trap
        at_s = static_cast<float>(std::clamp(t_s, -kFarOutside_s, kFarOutside_s));
    }
    const JET x = AxisAt(0, at_s);
    const JET y = AxisAt(1, at_s);
    const JET z = AxisAt(2, at_s);
    return {{x.value, y.value, z.value}, {x.first, y.first, z.first}, {x.second, y.second, z.second}};
}

int SAMPLED_ORBIT::StateVectorCount() const {
    return samples_ == nullptr ? 0 : static_cast<int>(samples_->Count());
}

void SAMPLED_ORBIT::SetReferenceTime(const ANY_TIME& time) {
    if (time.index() != reference_.index()) {
        Log().Message(LOGGING_LEVEL::ALARM, "ORBIT: the reference time %s is %s, but the times of %s are %s",
                      TextOf(time).c_str(), KindOf(time), TextOf(TypeId()), KindOf(reference_));
        throw ERROR_ARGUMENT();
    }
    reference_ = time;
}

void SAMPLED_ORBIT::SavePolynomial(const std::string& file_name) const {
    CHECK_TABLE table(file_name);
    for (size_t i = 0; samples_ != nullptr && i < samples_->Count(); ++i) {
        table.AddLine(samples_->t_s[i], samples_->Position_m(i), Position(samples_->t_s[i]));
    }
    table.Close();
}

void SAMPLED_ORBIT::CopyFrom(const ORBIT_BASE& other, const char* signature) {
    if (typeid(*this) != typeid(other)) RefuseAssignment(signature);
    const auto& same_type = static_cast<const SAMPLED_ORBIT&>(other);
    CopySetupFrom(same_type);
    reference_ = same_type.reference_;
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
    } catch (const std::bad_alloc&) {  // no fault of the entry
        throw;
    } catch (...) {
        Log().Message(
            LOGGING_LEVEL::ALARM,
            "%s: key \"orbit_interpolation\": value \"%s\" does not suit the %zu state vectors at key \"%s\" of %s",
            Configuration().pool_file.c_str(), Configuration().interpolation.c_str(), samples.Count(),
            lists.time_key.c_str(), lists.file.c_str());
        throw;
    }
    samples_ = std::make_shared<const ORBIT_SAMPLES>(samples);
}
