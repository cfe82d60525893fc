#include "app/usage.h"

#include <algorithm>
#include <cstdio>
#include <initializer_list>
#include <string>

#include "app/keys/control_key.h"
#include "app/velmora_version.h"

namespace {

void PrintKeys(std::initializer_list<KEY_NEED> needs, const char* title) {
    std::printf("\n%s\n", title);
    for (const CONTROL_KEY_ROW& key : kControlKeys) {
        if (std::find(needs.begin(), needs.end(), key.need) == needs.end()) continue;
        const std::string value = std::string(key.type) + (*key.unit == '\0' ? "" : ", ") + key.unit;
        const std::string fallback = *key.fallback == '\0' ? "" : " [" + std::string(key.fallback) + "]";
        std::printf("  %-29s  %-11s  %s%s\n", key.name, value.c_str(), key.help, fallback.c_str());
    }
}

void PrintUsage() {
    std::printf(
        "velmora: simulates the interferometric phase that the terrain alone produces\n"
        "\n"
        "usage:   velmora -KEY VALUE [-KEY VALUE ...]\n"
        "example: velmora -pcf scene.pcf -lfn scene.log -status /data/status\n"
        "\n"
        "A key is looked up as -KEY among the arguments, as a line KEY VALUE in the control file,\n"
        "then in the environment; a mandatory key is finally asked at the keyboard.\n"
        "Without a key, what stands in [] holds.\n");
    PrintKeys({KEY_NEED::MANDATORY}, "mandatory keys");
    PrintKeys({KEY_NEED::OPTIONAL, KEY_NEED::FLAG}, "optional keys");
    PrintKeys({KEY_NEED::FORCES_POOL}, "optional keys that win over the InSAR pool and are written into it");
    PrintKeys({KEY_NEED::STEERING}, "keys for files and logging");
    PrintKeys({KEY_NEED::ENVIRONMENT}, "environment");
    std::printf(
        "\n"
        "levels: TRACE DEBUG PARAMETER INFO QA_WARNING WARNING EXCEPTION ALARM NO_MESSAGE\n"
        "\n"
        "exit status: 0 success, 1 error, 2 STOP file found, 255 signal before the start\n");
}

}  // namespace

std::optional<int> AnswerInformationRequest(int argc, char** argv) {
    if (argc != 2) return std::nullopt;
    const std::string request = argv[1];
    if (request == "--help")
        PrintUsage();
    else if (request == "--version")
        std::printf("%s\n", VelmoraVersion("velmora").full_version.c_str());
    else
        return std::nullopt;
    return std::fflush(stdout) == 0 ? 0 : 1;
}
