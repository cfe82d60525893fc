/// \file pool_orbit.h
/// An orbit whose state vectors stand in a parameter pool, in three lists: times, positions, velocities.

#pragma once

#include "lib/baselib/logging/logging.h"
#include "orbit/orbit.h"
#include "orbit/source/pool_state_vectors.h"

template <class T, class S, class I, class P>
class POOL_ORBIT final : public ORBIT<T, S, I, P> {
  public:
    POOL_ORBIT() = default;
    POOL_ORBIT(const POOL_ORBIT&) = default;
    POOL_ORBIT& operator=(const POOL_ORBIT& other) { return *this = static_cast<const ORBIT_BASE&>(other); }
    POOL_ORBIT& operator=(const ORBIT_BASE& apool_orbit) override {
        this->CopyFrom(apool_orbit, "virtual POOL_ORBIT<T,S,I,P>& operator=( const ORBIT_BASE& apool_orbit )");
        return *this;
    }
    [[nodiscard]] std::unique_ptr<ORBIT_BASE> Clone() const override { return std::make_unique<POOL_ORBIT>(*this); }

    /// Reads the lists whose keys the configuration names.
    void ReadFromParameterPool(PARAMETER_POOL& pool) override {
        this->TakeOver(ReadStateVectors(pool, this->Configuration(), this->Numbers()));
    }

    /// The older name of ReadFromParameterPool.
    void ReadPool(PARAMETER_POOL& pool) {
        Log() << LOGGING_LEVEL::INFO << "Deprecated function! Please use read() instead!\n";
        ReadFromParameterPool(pool);
    }
};
