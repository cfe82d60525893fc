#include <fcntl.h>
#include <unistd.h>

#include <optional>

#include "app/check/check_run.h"
#include "app/run_velmora.h"
#include "app/usage.h"
#include "lib/baselib/controller/fatal_signals.h"

namespace {

/// A caller may close the standard streams. Their numbers would then go to the next files opened, and log lines would
/// end up in a pool or an image.
void OccupyStandardDescriptors() {
    int descriptor = open("/dev/null", O_RDWR);
    while (descriptor >= 0 && descriptor <= STDERR_FILENO) descriptor = open("/dev/null", O_RDWR);
    close(descriptor);
}

}  // namespace

int main(int argc, char** argv) {
    OccupyStandardDescriptors();
    if (const std::optional<int> status = AnswerInformationRequest(argc, argv)) return *status;
    InstallFatalSignalHandlers();
    if (TakeCheckRequest(argc, argv)) CheckRun(argc, argv);
    RunVelmora(argc, argv);
}
