/// \file stage_clock.h
/// How long each stage took and how much memory it had at most.

#pragma once

#include <chrono>
#include <string>
#include <vector>

struct STAGE_COST {
    std::string name;
    double seconds = 0.0;
    /// Resident, of the whole process while the stage ran; 0: the system does not tell.
    long long peak_memory_bytes = 0;
};

class STAGE_CLOCK {
  public:
    /// Ends the stage under way, if any. @param name  empty: no further stage
    void Begin(const std::string& name);

    /// All stages that have ended, and the one under way as it stands.
    [[nodiscard]] std::vector<STAGE_COST> Costs() const;

  private:
    [[nodiscard]] STAGE_COST Present() const;

    std::vector<STAGE_COST> ended_;
    std::string name_;
    std::chrono::steady_clock::time_point began_;
};
