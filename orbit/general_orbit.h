/// \file general_orbit.h
/// The orbit of an acquisition, whatever its source, time type and interpolation: the facade that geometry asks.
/// Frame: Earth-fixed, metres, seconds. Axis: seconds since the orbit's reference time, for every time type.
/// Life: set up and read once, then queried only.
/// Threads: queries are const, take no lock and, for VECTOR_3D, allocate nothing.

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "lib/baselib/containers/records.h"
#include "lib/baselib/containers/vector.h"
#include "orbit/orbit_base.h"

/// @tparam T  type of the times of queries
/// @tparam V  vector that answers them: VECTOR_3D<double>, or VECTOR<double> of dimension 3
template <class T, class V>
class GENERAL_ORBIT {
  public:
    /// Without an orbit; ReadFromParameterPool makes one.
    GENERAL_ORBIT() = default;

    /// @param orbit_type     as in the pool, "orbit_pool_double_utc"
    /// @param interpolation  as in the pool, "hermite_0_8"
    /// @throws ERROR_ARGUMENT, after logging, for texts that name no orbit
    GENERAL_ORBIT(const std::string& orbit_type, const std::string& interpolation);

    GENERAL_ORBIT(const GENERAL_ORBIT& other);
    GENERAL_ORBIT(GENERAL_ORBIT&&) noexcept = default;
    virtual ~GENERAL_ORBIT() = default;

    /// Copies the orbit; one that holds an orbit already takes only one of the same concrete type.
    /// @throws ERROR_ARGUMENT, after logging, for another type, or when there is nothing to copy
    virtual GENERAL_ORBIT& operator=(const GENERAL_ORBIT& agen_orbit);

    /// Makes the orbit that the pool describes: type, interpolation, reference time, state vectors. A failure leaves
    /// this object as it was.
    /// @throws ERROR_EXCEPTION after lines that name file, key and value
    void ReadFromParameterPool(PARAMETER_POOL& pool);

    /// @throws ERROR_DATA or ERROR_ARGUMENT, after logging, for a text that is no time or one of another time type
    void SetReferenceTime(const std::string& text);

    /// @param t_s  seconds since the reference time; see ORBIT_BASE for times outside the state vectors
    [[nodiscard]] V Position(T t_s) const;      ///< m
    [[nodiscard]] V Velocity(T t_s) const;      ///< m/s
    [[nodiscard]] V Acceleration(T t_s) const;  ///< m/s^2
    /// All three at the price of one.
    [[nodiscard]] ORBIT_STATE State(T t_s) const { return Core().State(t_s); }

    /// The same at a time of the orbit's own type. @throws ERROR_ARGUMENT, after logging, for another type
    [[nodiscard]] V Position(const ANY_TIME& t) const { return Position(SecondsSinceReference(t)); }
    [[nodiscard]] V Velocity(const ANY_TIME& t) const { return Velocity(SecondsSinceReference(t)); }
    [[nodiscard]] V Acceleration(const ANY_TIME& t) const { return Acceleration(SecondsSinceReference(t)); }
    [[nodiscard]] ORBIT_STATE State(const ANY_TIME& t) const { return State(SecondsSinceReference(t)); }

    /// Seconds of the first and last state vector since the reference time.
    [[nodiscard]] double FirstTime() const { return Core().FirstTime(); }
    [[nodiscard]] double LastTime() const { return Core().LastTime(); }
    [[nodiscard]] int StateVectorCount() const { return Core().StateVectorCount(); }
    /// See ORBIT_BASE.
    [[nodiscard]] std::vector<double> PieceBounds() const { return Core().PieceBounds(); }
    [[nodiscard]] bool EndsOutsideItsData() const { return Core().EndsOutsideItsData(); }
    [[nodiscard]] bool EarlierPieceAnswers() const { return Core().EarlierPieceAnswers(); }

    [[nodiscard]] ANY_TIME ReferenceTime() const { return Core().ReferenceTime(); }
    /// A time of the orbit's own type as seconds on the axis of the queries, leap seconds counted.
    [[nodiscard]] double SecondsSinceReference(const ANY_TIME& t) const { return SecondsSince(Core().Zero(), t); }
    /// See ORBIT_BASE.
    double CountFromNearbySecond() {
        if (core_ == nullptr) RefuseCoreObject();
        return core_->CountFromNearbySecond();
    }
    [[nodiscard]] double SecondsFromReferenceToZero() const { return Core().Zero().after_s; }
    /// True when both references are of one kind: plain seconds, UTC or MET.
    [[nodiscard]] bool HasReferenceOfSameKind(const GENERAL_ORBIT& other) const {
        return ReferenceTime().index() == other.ReferenceTime().index();
    }
    /// The zero of the other orbit's time axis minus this one's in seconds, leap seconds counted: adding it to a time
    /// on the other's axis gives the time on this one's. @throws ERROR_ARGUMENT, after logging, when the kinds differ
    [[nodiscard]] double SecondsFromReferenceOf(const GENERAL_ORBIT& other) const {
        return SecondsBetween(Core().Zero(), other.Core().Zero());
    }

    /// See ORBIT_BASE.
    void SavePolynomial(const std::string& file_name) const { Core().SavePolynomial(file_name); }

    [[nodiscard]] ORBIT_TYPE_ID TypeId() const { return Core().TypeId(); }
    [[nodiscard]] const INTERPOLATION_REQUEST& Interpolation() const { return Core().Interpolation(); }
    [[nodiscard]] const ORBIT_CONFIGURATION& Configuration() const { return Core().Configuration(); }
    [[nodiscard]] const std::vector<std::string>& RecordFiles() const { return Core().RecordFiles(); }

  private:
    [[nodiscard]] const ORBIT_BASE& Core() const {
        if (core_ == nullptr) RefuseCoreObject();
        return *core_;
    }

    std::unique_ptr<ORBIT_BASE> core_;
};

extern template class GENERAL_ORBIT<double, VECTOR_3D<double>>;
extern template class GENERAL_ORBIT<double, VECTOR<double>>;

/// The orbit of an acquisition.
using ORBIT_OF_POOL = GENERAL_ORBIT<double, VECTOR_3D<double>>;
