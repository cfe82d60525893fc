#include "orbit/sampled_orbit.h"

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"
#include "orbit/check_table.h"
#include "time/time_axis.h"

template <class T, class S>
SAMPLED_ORBIT<T, S>::SAMPLED_ORBIT() = default;
template <class T, class S>
SAMPLED_ORBIT<T, S>::SAMPLED_ORBIT(const SAMPLED_ORBIT&) = default;
template <class T, class S>
SAMPLED_ORBIT<T, S>::~SAMPLED_ORBIT() = default;

template <class T, class S>
double SAMPLED_ORBIT<T, S>::FirstTime() const {
    if (!HasSamples()) RefuseCoreObject();
    return samples_.front().t_s;
}

template <class T, class S>
double SAMPLED_ORBIT<T, S>::LastTime() const {
    if (!HasSamples()) RefuseCoreObject();
    return samples_.back().t_s;
}

// State vectors and the middles between them: whatever the interpolator, it hands over nowhere else.
template <class T, class S>
std::vector<double> SAMPLED_ORBIT<T, S>::PieceBounds() const {
    if (!HasSamples()) RefuseCoreObject();
    std::vector<double> bounds;
    for (std::size_t i = 0; i + 1 < samples_.size(); ++i) {
        const T middle_s = samples_[i].t_s + (samples_[i + 1].t_s - samples_[i].t_s) / 2;
        bounds.push_back(samples_[i].t_s);
        bounds.push_back(middle_s);
    }
    bounds.push_back(samples_.back().t_s);
    return bounds;
}

template <class T, class S>
void SAMPLED_ORBIT<T, S>::SetReferenceTime(const ANY_TIME& time) {
    const S* const own_type = std::get_if<S>(&time);
    if (own_type == nullptr) {
        Log().Message(LOGGING_LEVEL::ALARM, "ORBIT: the reference time %s is %s, but the times of %s are %s",
                      TextOf(time).c_str(), KindOf(time), TextOf(TypeId()), TIME_AXIS<S>::kName);
        throw ERROR_ARGUMENT();
    }
    reference_ = *own_type;
}

template <class T, class S>
void SAMPLED_ORBIT<T, S>::SavePolynomial(const std::string& file_name) const {
    CHECK_TABLE table(file_name);
    for (const ORBIT_SAMPLE<T>& sample : samples_) {
        const VECTOR_3D<T>& given = sample.position_m;
        table.AddLine(sample.t_s, {given.x, given.y, given.z}, Position(sample.t_s));
    }
    table.Close();
}

template <class T, class S>
void SAMPLED_ORBIT<T, S>::CopySamplesFrom(const SAMPLED_ORBIT& other) {
    CopySetupFrom(other);
    reference_ = other.reference_;
    samples_ = other.samples_;
}

template <class T, class S>
typename SAMPLED_ORBIT<T, S>::SAMPLES SAMPLED_ORBIT<T, S>::Checked(const STATE_VECTORS<T, S>& vectors,
                                                                   const STATE_VECTOR_SOURCE& source) const {
    return CheckedSamples(vectors, reference_, Interpolation(), source);
}

template <class T, class S>
void SAMPLED_ORBIT<T, S>::ReportUnsuitable(const SAMPLES& samples, const STATE_VECTOR_SOURCE& source) const {
    Log().Message(
        LOGGING_LEVEL::ALARM,
        "%s: key \"orbit_interpolation\": value \"%s\" does not suit the %zu state vectors at key \"%s\" of %s",
        Configuration().pool_file.c_str(), Configuration().interpolation.c_str(), samples.size(),
        source.time_key.c_str(), source.file.c_str());
}

template class SAMPLED_ORBIT<float, double>;
template class SAMPLED_ORBIT<float, UNIVERSAL_TIME>;
template class SAMPLED_ORBIT<float, MISSION_ELAPSED_TIME>;
template class SAMPLED_ORBIT<double, double>;
template class SAMPLED_ORBIT<double, UNIVERSAL_TIME>;
template class SAMPLED_ORBIT<double, MISSION_ELAPSED_TIME>;
