/// \file sampled_orbit.h
/// What an orbit of state vectors does without knowing its interpolation: it keeps the vectors and their reference
/// time.

#pragma once

#include <vector>

#include "orbit/orbit_base.h"
#include "orbit/state_vectors.h"

/// @tparam T  type of the coordinates  @tparam S  time type of the state vectors
template <class T, class S>
class SAMPLED_ORBIT : public ORBIT_BASE {
  public:
    ~SAMPLED_ORBIT() override;
    using ORBIT_BASE::operator=;

    [[nodiscard]] double FirstTime() const override;
    [[nodiscard]] double LastTime() const override;
    [[nodiscard]] int StateVectorCount() const override { return static_cast<int>(samples_.size()); }
    [[nodiscard]] std::vector<double> PieceBounds() const override;

    void SetReferenceTime(const ANY_TIME& time) override;
    [[nodiscard]] ANY_TIME ReferenceTime() const override { return reference_; }

    void SavePolynomial(const std::string& file_name) const override;

  protected:
    using SAMPLES = std::vector<ORBIT_SAMPLE<T>>;

    SAMPLED_ORBIT();
    SAMPLED_ORBIT(const SAMPLED_ORBIT&);

    void CopySamplesFrom(const SAMPLED_ORBIT& other);
    /// The vectors on the orbit's axis. @throws ERROR_DATA, see state_vectors.h
    [[nodiscard]] SAMPLES Checked(const STATE_VECTORS<T, S>& vectors, const STATE_VECTOR_SOURCE& source) const;
    void SetSamples(SAMPLES samples) { samples_ = std::move(samples); }
    [[nodiscard]] bool HasSamples() const { return !samples_.empty(); }
    /// Logs that these vectors and the orbit's interpolation do not go together.
    void ReportUnsuitable(const SAMPLES& samples, const STATE_VECTOR_SOURCE& source) const;

  private:
    S reference_{};
    SAMPLES samples_;
};

extern template class SAMPLED_ORBIT<float, double>;
extern template class SAMPLED_ORBIT<float, UNIVERSAL_TIME>;
extern template class SAMPLED_ORBIT<float, MISSION_ELAPSED_TIME>;
extern template class SAMPLED_ORBIT<double, double>;
extern template class SAMPLED_ORBIT<double, UNIVERSAL_TIME>;
extern template class SAMPLED_ORBIT<double, MISSION_ELAPSED_TIME>;
