#include "orbit/orbit_base.h"

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"
#include "lib/baselib/logging/logging.h"

namespace {

/// For operations that a concrete orbit has not taken over.
[[noreturn]] void RefuseOperation(const char* operation) {
    LogAndThrow<ERROR_NOT_IMPLEMENTED>("ORBIT_BASE: %s", operation);
}

}  // namespace

void RefuseAssignment(const char* signature) {
    LogAndThrow<ERROR_ARGUMENT>("%s", signature);
}

void RefuseCoreObject() {
    Log() << LOGGING_LEVEL::ALARM << "ORBIT: can not determine type of core object\n";
    throw ERROR_ARGUMENT();
}

ORBIT_BASE::ORBIT_BASE() = default;
ORBIT_BASE::ORBIT_BASE(const ORBIT_BASE&) = default;
ORBIT_BASE::~ORBIT_BASE() = default;

ORBIT_BASE& ORBIT_BASE::operator=(const ORBIT_BASE&) {
    RefuseAssignment("ORBIT_BASE: virtual ORBIT_BASE& operator=( const ORBIT_BASE&  aorbit )");
}

std::unique_ptr<ORBIT_BASE> ORBIT_BASE::Clone() const {
    RefuseOperation("Clone()");
}

ORBIT_STATE ORBIT_BASE::State(double) const {
    RefuseOperation("State(double)");
}

double ORBIT_BASE::FirstTime() const {
    RefuseOperation("FirstTime()");
}

double ORBIT_BASE::LastTime() const {
    RefuseOperation("LastTime()");
}

int ORBIT_BASE::StateVectorCount() const {
    RefuseOperation("StateVectorCount()");
}

std::vector<double> ORBIT_BASE::PieceBounds() const {
    RefuseOperation("PieceBounds()");
}

void ORBIT_BASE::SetReferenceTime(const ANY_TIME&) {
    RefuseOperation("SetReferenceTime(const ANY_TIME&)");
}

ANY_TIME ORBIT_BASE::ReferenceTime() const {
    RefuseOperation("ReferenceTime()");
}

double ORBIT_BASE::CountFromNearbySecond() {
    RefuseOperation("CountFromNearbySecond()");
}

AXIS_ZERO ORBIT_BASE::Zero() const {
    RefuseOperation("Zero()");
}

void ORBIT_BASE::ReadFromParameterPool(PARAMETER_POOL&) {
    RefuseOperation("ReadFromParameterPool(PARAMETER_POOL&)");
}

void ORBIT_BASE::SavePolynomial(const std::string&) const {
    RefuseOperation("SavePolynomial(const std::string&)");
}

void ORBIT_BASE::CopySetupFrom(const ORBIT_BASE& other) {
    type_id_ = other.type_id_;
    interpolation_ = other.interpolation_;
    configuration_ = other.configuration_;
    record_files_ = other.record_files_;
}
