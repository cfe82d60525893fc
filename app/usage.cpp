#include "app/usage.h"

#include <cstdio>
#include <string>

#include "app/keys/key_documentation.h"
#include "app/velmora_version.h"

namespace {

void PrintUsage() {
    std::printf(
        "velmora: simulates the interferometric phase that the terrain alone produces\n"
        "\n"
        "usage:   velmora -KEY VALUE [-KEY VALUE ...]\n"
        "example: velmora -pcf scene.pcf -lfn scene.log -status /data/status\n"
        "\n"
        "A key is looked up as -KEY among the arguments, as a line KEY VALUE in the control file,\n"
        "then in the environment; a mandatory key is finally asked at the keyboard.\n"
        "Without a key, what stands in [] holds.\n"
        "\n"
        "velmora --check with the same keys tries everything before the simulation, tells all that is wrong and\n"
        "what the run needs, and writes nothing.\n");
    std::printf("%s", KeysAsHelp().c_str());
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
    else if (request == "--keys-markdown")
        std::printf("%s", KeysAsMarkdown().c_str());
    else if (request == "--version")
        std::printf("%s\n", VelmoraVersion("velmora").full_version.c_str());
    else
        return std::nullopt;
    return std::fflush(stdout) == 0 ? 0 : 1;
}
