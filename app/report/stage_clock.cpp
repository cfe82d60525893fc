#include "app/report/stage_clock.h"

#include <fstream>

namespace {

constexpr long long kKilobyte = 1024;

/// Linux keeps the largest resident size since it was last reset (proc(5): VmHWM, clear_refs).
void ResetPeakMemory() {
    std::ofstream("/proc/self/clear_refs") << "5";
}

long long PeakMemory_bytes() {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word) {
        long long kilobytes = 0;
        if (word == "VmHWM:" && status >> kilobytes) return kilobytes * kKilobyte;
    }
    return 0;
}

}  // namespace

STAGE_COST STAGE_CLOCK::Present() const {
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - began_;
    return {name_, elapsed.count(), PeakMemory_bytes()};
}

void STAGE_CLOCK::Begin(const std::string& name) {
    if (!name_.empty()) ended_.push_back(Present());
    name_ = name;
    began_ = std::chrono::steady_clock::now();
    ResetPeakMemory();
}

std::vector<STAGE_COST> STAGE_CLOCK::Costs() const {
    std::vector<STAGE_COST> costs = ended_;
    if (!name_.empty()) costs.push_back(Present());
    return costs;
}
