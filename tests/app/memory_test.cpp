#include "app/products/memory.h"

#include <gtest/gtest.h>

#include "tests/kit/in_process.h"
#include "tests/kit/temporary_folder.h"

namespace {

struct GROUP {
    const char *limit, *used, *statistics;
};

struct CASE {
    const char* machine;  ///< of /proc/meminfo
    GROUP whole, outer, own;
    double bytes;
};

constexpr const char* kMachine = "MemTotal: 9 kB\nMemAvailable:    2000 kB\nSwapFree:  1000 kB\n";
constexpr GROUP kFree = {"max\n", "5\n", "anon 7\n"};
constexpr double kMachineBytes = 3000 * 1024.0;

constexpr CASE kCases[] = {
    {kMachine, kFree, kFree, kFree, kMachineBytes},
    {"MemAvailable: 2000 kB\n", kFree, kFree, kFree, 2000 * 1024.0},
    {kMachine, {"4000000\n", "2000000\n", ""}, kFree, kFree, 2e6},
    {kMachine, kFree, {"2000000\n", "1500000\n", "file 9\ninactive_file 300000\nactive_file 8\n"}, kFree, 800000.0},
    {kMachine, kFree, {"2000000\n", "1500000\n", ""}, {"0\n", "0\n", ""}, 0.0},
    {kMachine, kFree, {"2000000\n", "1500000\n", ""}, {"600000\n", "0\n", ""}, 500000.0},
    {kMachine, kFree, kFree, {"1000\n", "2000\n", "inactive_file 10\n"}, 0.0},
    {"nothing\n", kFree, kFree, {"9000000\n", "0\n", ""}, 9e6},
    {kMachine, kFree, kFree, {"9\n", "?\n", ""}, kMachineBytes},
};

/// Shows this process other files in the place of the system's. @return false where this is not permitted
bool ShowSystem(const TEMPORARY_FOLDER& folder, const CASE& c) {
    const char* const groups = "/sys/fs/cgroup";
    if (!std::filesystem::exists(groups) || !MountSmallDisk(groups, "size=1m")) return false;
    const std::pair<const char*, GROUP> all[] = {{"/", c.whole}, {"/a/", c.outer}, {"/a/b/", c.own}};
    for (const auto& [name, group] : all) {
        const std::string place = std::string(groups) + name;
        std::filesystem::create_directories(place);
        Write(place + "memory.max", group.limit);
        Write(place + "memory.current", group.used);
        Write(place + "memory.stat", group.statistics);
    }
    const std::string own = folder.Make("4:memory:/x\n0::/a/b\n", "own");
    const std::string machine = folder.Make(c.machine, "machine");
    return mount(own.c_str(), "/proc/self/cgroup", "", MS_BIND, nullptr) == 0 &&
           mount(machine.c_str(), "/proc/meminfo", "", MS_BIND, nullptr) == 0;
}

TEST(AvailableBytes, AreWhatTheMachineAndAllControlGroupsLeave) {
    const TEMPORARY_FOLDER folder;
    for (const CASE& c : kCases) {
        const int status = InProcess([&] {
            if (!ShowSystem(folder, c)) _exit(77);
            EXPECT_EQ(AvailableBytes(), c.bytes);
            _exit(testing::Test::HasFailure() ? 1 : 0);
        });
        if (status == 77) GTEST_SKIP() << "no right to mount";
        EXPECT_EQ(status, 0);
    }
}

}  // namespace
