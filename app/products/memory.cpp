#include "app/products/memory.h"

#include <sys/sysinfo.h>

#include <algorithm>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>

namespace {

constexpr double kUnknown = std::numeric_limits<double>::max();

/// The number behind a word at the start of a line, as in "MemAvailable:  123 kB"; negative without such a line.
double NumberBehind(const std::string& file, const std::string& word) {
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string first;
        double number = 0.0;
        if (words >> first && first == word && words >> number) return number;
    }
    return -1.0;
}

/// The only number of a file; negative without one ("max").
double NumberIn(const std::string& file) {
    std::ifstream content(file);
    double number = 0.0;
    return content >> number ? number : -1.0;
}

/// What a control group and those above it leave. Cached files count as used there, but are given up on demand.
double LeftByControlGroups(std::string group) {
    const std::string root = "/sys/fs/cgroup";
    double left = kUnknown;
    for (;;) {
        const std::string folder = root + group;
        const double limit = NumberIn(folder + "/memory.max");
        const double used = NumberIn(folder + "/memory.current");
        const double cached = NumberBehind(folder + "/memory.stat", "inactive_file");
        if (limit >= 0.0 && used >= 0.0) left = std::min(left, std::max(limit - used + std::max(cached, 0.0), 0.0));
        if (group.empty() || group == "/") return left;
        group.erase(group.rfind('/'));
    }
}

/// The line "0::/path" of the unified hierarchy.
std::string OwnControlGroup() {
    std::ifstream groups("/proc/self/cgroup");
    for (std::string line; std::getline(groups, line);)
        if (line.rfind("0::/", 0) == 0) return line.substr(3);
    return {};
}

}  // namespace

double MachineBytes() {
    struct sysinfo system {};
    if (sysinfo(&system) != 0) return 0.0;
    return static_cast<double>(system.totalram) * system.mem_unit;
}

double AvailableBytes() {
    constexpr double kBytesPerKibibyte = 1024.0;
    const double memory = NumberBehind("/proc/meminfo", "MemAvailable:");
    const double swap = NumberBehind("/proc/meminfo", "SwapFree:");
    const double machine = memory < 0.0 ? kUnknown : (memory + std::max(swap, 0.0)) * kBytesPerKibibyte;
    return std::min(machine, LeftByControlGroups(OwnControlGroup()));
}
