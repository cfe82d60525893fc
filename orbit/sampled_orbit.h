/// \file sampled_orbit.h
/// The work of every orbit of state vectors, whatever its types: it keeps the samples and their reference time, has one
/// interpolator per axis made from them, and answers from those.
/// Life: samples and interpolators are constant once made; copies of an orbit share them.

#pragma once

#include <array>
#include <memory>

#include "orbit/interpolation/interpolator.h"
#include "orbit/orbit_base.h"
#include "orbit/samples/orbit_samples.h"

/// What the types of ORBIT<T,S,I,P> say.
struct ORBIT_TRAITS {
    ORBIT_NUMBERS numbers;                                 ///< T and S
    std::unique_ptr<INTERPOLATOR> (*make_interpolator)();  ///< I, without points yet
};

class SAMPLED_ORBIT : public ORBIT_BASE {
  public:
    ~SAMPLED_ORBIT() override;
    using ORBIT_BASE::operator=;

    [[nodiscard]] ORBIT_STATE State(double t_s) const override;

    [[nodiscard]] double FirstTime() const override;
    [[nodiscard]] double LastTime() const override;
    [[nodiscard]] int StateVectorCount() const override;
    [[nodiscard]] std::vector<double> PieceBounds() const override;

    void SetReferenceTime(const ANY_TIME& time) override;
    [[nodiscard]] ANY_TIME ReferenceTime() const override { return reference_; }
    double CountFromNearbySecond() override;
    [[nodiscard]] AXIS_ZERO Zero() const override { return {reference_, zero_after_s_}; }

    void SavePolynomial(const std::string& file_name) const override;

  protected:
    explicit SAMPLED_ORBIT(const ORBIT_TRAITS& traits);
    SAMPLED_ORBIT(const SAMPLED_ORBIT&);

    /// From an orbit of the same concrete type. @throws ERROR_ARGUMENT, after the signature in the log, from any other
    void CopyFrom(const ORBIT_BASE& other, const char* signature);
    [[nodiscard]] const ORBIT_NUMBERS& Numbers() const { return traits_.numbers; }

    /// Checks the vectors, creates the interpolation and only then takes both over.
    /// @throws ERROR_EXCEPTION after a line that names file and key
    void TakeOver(const STATE_VECTOR_LISTS& lists);

  private:
    using AXES = std::array<std::unique_ptr<INTERPOLATOR>, 3>;

    /// @throws ERROR_ARGUMENT, after logging, while there are none
    [[nodiscard]] const ORBIT_SAMPLES& Samples() const;
    [[nodiscard]] AXES MakeAxes(const ORBIT_SAMPLES& samples) const;
    [[nodiscard]] JET AxisAt(size_t axis, double sample_time_s) const;
    /// A time of a query on the axis of the samples.
    [[nodiscard]] double SampleTime(double t_s) const { return t_s + (zero_after_s_ - samples_->zero.after_s); }
    /// Says what the hard stop does not that ends the process now.
    void ReportOutside(double sample_time_s) const;

    ORBIT_TRAITS traits_;
    ANY_TIME reference_;
    double zero_after_s_ = 0.0;  ///< from the reference to the zero of the times of queries
    std::shared_ptr<const ORBIT_SAMPLES> samples_;
    std::shared_ptr<const AXES> axes_;
};
