/// \file orbit_base.h
/// What the rest of the system knows of an orbit: position, velocity and acceleration of a satellite at any time inside
/// the span of its state vectors.
/// Frame: Earth-fixed, metres, seconds. Axis: seconds since the orbit's reference time, for every time type.
/// Life: set up and read once, then queried only.
/// Threads: queries are const, take no lock and allocate nothing; everything else belongs to one thread.

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "orbit/interpolation/interpolation_request.h"
#include "orbit/orbit_ids.h"
#include "orbit/orbit_state.h"
#include "orbit/samples/axis_zero.h"
#include "orbit/source/orbit_configuration.h"

class ORBIT_BASE {
  public:
    virtual ~ORBIT_BASE();

    /// Copies from an orbit of the same concrete type. @throws ERROR_ARGUMENT, after logging, from any other
    virtual ORBIT_BASE& operator=(const ORBIT_BASE& aorbit);
    [[nodiscard]] virtual std::unique_ptr<ORBIT_BASE> Clone() const;

    /// @param t_s  seconds since the reference time, inside FirstTime() to LastTime(). Outside, the outermost piece of
    /// the interpolation goes on; hermite and localhermite end the process there.
    /// @throws ERROR_ARGUMENT, after logging, while there are no state vectors
    [[nodiscard]] virtual ORBIT_STATE State(double t_s) const;
    /// Parts of the state: m, m/s (first derivative of the position), m/s^2 (second derivative).
    [[nodiscard]] VECTOR_3D<double> Position(double t_s) const { return State(t_s).position_m; }
    [[nodiscard]] VECTOR_3D<double> Velocity(double t_s) const { return State(t_s).velocity_m_s; }
    [[nodiscard]] VECTOR_3D<double> Acceleration(double t_s) const { return State(t_s).acceleration_m_s2; }

    /// Times of the first and last state vector in seconds since the reference time, as the interpolation sees them
    /// (for orbits of single precision rounded to float).
    [[nodiscard]] virtual double FirstTime() const;
    [[nodiscard]] virtual double LastTime() const;
    [[nodiscard]] virtual int StateVectorCount() const;
    /// Increasing times, FirstTime() to LastTime(), between which every axis is one polynomial: the interpolation may
    /// hand over from one piece to the next at these times only.
    [[nodiscard]] virtual std::vector<double> PieceBounds() const;
    /// True for hermite and localhermite, which end the process when they are asked outside their data.
    [[nodiscard]] bool EndsOutsideItsData() const {
        return interpolation_.id == INTERPOLATION_ID::HERMITE || interpolation_.id == INTERPOLATION_ID::LOCALHERMITE;
    }
    /// Which of two pieces answers at the time where they meet.
    [[nodiscard]] bool EarlierPieceAnswers() const { return interpolation_.id == INTERPOLATION_ID::HERMITE; }

    /// To be set before the state vectors are read. @throws ERROR_ARGUMENT, after logging, for another time type than
    /// the orbit's own, and once there are state vectors: it would move them
    virtual void SetReferenceTime(const ANY_TIME& time);
    [[nodiscard]] virtual ANY_TIME ReferenceTime() const;

    /// From now on all times of queries count from a whole second near the state vectors, where the reference time is
    /// more than three days away: full accuracy, and only so can the orbit be compiled. @return how many seconds after
    /// the reference time that is, 0 where it is near: what the caller's own times are to be moved by
    virtual double CountFromNearbySecond();
    /// The zero that all times of queries count from.
    [[nodiscard]] virtual AXIS_ZERO Zero() const;

    /// Reads the state vectors from the pool, or from the place that the pool's configuration names, and creates the
    /// interpolation. A failure leaves the orbit as it was.
    /// @throws ERROR_EXCEPTION after a line that names file and key
    virtual void ReadFromParameterPool(PARAMETER_POOL& pool);

    /// Writes a table of the given and the interpolated position at every state vector.
    /// @throws ERROR_CAN_NOT_CREATE_FILE, ERROR_CAN_NOT_WRITE_FILE, after logging
    virtual void SavePolynomial(const std::string& file_name) const;

    /// @name Set-up, shared by all orbits
    /// @{
    void SetTypeId(ORBIT_TYPE_ID id) { type_id_ = id; }
    void SetInterpolation(const INTERPOLATION_REQUEST& request) { interpolation_ = request; }
    void SetRecordFiles(std::vector<std::string> paths) { record_files_ = std::move(paths); }
    void SetConfiguration(ORBIT_CONFIGURATION configuration) { configuration_ = std::move(configuration); }
    [[nodiscard]] ORBIT_TYPE_ID TypeId() const { return type_id_; }
    [[nodiscard]] const INTERPOLATION_REQUEST& Interpolation() const { return interpolation_; }
    [[nodiscard]] const ORBIT_CONFIGURATION& Configuration() const { return configuration_; }
    /// Of the record database that the state vectors come from; none for those of a pool.
    [[nodiscard]] const std::vector<std::string>& RecordFiles() const { return record_files_; }
    /// @}

  protected:
    ORBIT_BASE();
    ORBIT_BASE(const ORBIT_BASE&);
    void CopySetupFrom(const ORBIT_BASE& other);

  private:
    ORBIT_TYPE_ID type_id_ = ORBIT_TYPE_ID::POOL_DOUBLE_DOUBLE;
    INTERPOLATION_REQUEST interpolation_;
    ORBIT_CONFIGURATION configuration_;
    std::vector<std::string> record_files_;
};

/// Logs the signature of an assignment that was given an orbit of another concrete type, and throws ERROR_ARGUMENT.
[[noreturn]] void RefuseAssignment(const char* signature);

/// Logs that there is no orbit, or one of a type nobody expects, and throws ERROR_ARGUMENT.
[[noreturn]] void RefuseCoreObject();
