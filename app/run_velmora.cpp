#include "app/run_velmora.h"

#include <fenv.h>

#include <ctime>
#include <new>
#include <string>

#include "app/keys/control_key.h"
#include "app/out_of_memory.h"
#include "app/products/output_products.h"
#include "app/products/pool_write_back.h"
#include "app/products/sidecars.h"
#include "app/products/software_history.h"
#include "app/report/run_report.h"
#include "app/request/run_files.h"
#include "app/say.h"
#include "app/simulation_state.h"
#include "app/velmora_version.h"
#include "lib/baselib/controller/controller_ifc.h"
#include "lib/baselib/controller/fatal_signals.h"
#include "lib/baselib/errors/enum_base.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/image/mapped_file.h"
#include "lib/baselib/image/unfinished_files.h"
#include "lib/baselib/logging/logging.h"
#include "lib/baselib/pool/pool_replacement.h"
#include "lib/baselib/vectors/vector_level.h"

namespace {

void LogStage(const char* banner) {
    Say(" ");
    Say("%s", banner);
    Say(" ");
}

HISTORY_ENTRY EntryOfThisRun(const VERSION_RECORD& version) {
    return EntryOfRun(version, Log().OpeningTime(), std::time(nullptr));
}

/// Some processors have none (64-bit ARM need not): the run goes on without that net.
void TellOfMissingTraps() {
    if (fegetexcept() != 0) return;
    Log().Message(LOGGING_LEVEL::WARNING,
                  "this processor has no floating-point traps: values that are not finite would not end the run");
}

/// Products and pools are complete: no memory for what stands beside them does not change that.
void TellOfProducts(const SIMULATION_STATE& state, RUN_REPORT& report) {
    try {
        BringSidecarsUpToDate(state.request);
        report.ProductsAreWritten(state.products.Files());
    } catch (const std::bad_alloc&) {
    }
}

/// The stages in their order. State and pools live in here: the pools are closed before the footer is written.
/// @param to_the_end  fatal signals are held back from the change of the pools on
void RunStages(CONTROLLER_IFC& controller, const VERSION_RECORD& version, RUN_REPORT& report,
               SIGNALS_HELD_BACK& to_the_end) {
    RUN_POOLS pools;

    SetOutOfMemoryLine("out of memory while the configuration, the pools and the DEM were read (stage A)");
    report.BeginStage("A");
    LogStage("A. READ CONFIGURATION *************************************");
    (void)ChosenVectorLevel();  // stage B's affair, but refused before the work of stage A
    const REQUEST request = ReadRequest(controller, pools);
    TryHistory(pools.HistoryPool(), EntryOfThisRun(version));
    SIMULATION_STATE state(request, pools);

    report.Describe(state);
    if (report.IsWanted() || Log().Takes(LOGGING_LEVEL::DEBUG)) state.products.WantValues();
    SetOutOfMemoryLine("out of memory in the phase simulation (stage B)");
    report.BeginStage("B");
    LogStage("B. PHASE SIMULATION ***************************************");
    const SIMULATED_IMAGE image = SimulateImage(state);

    SetOutOfMemoryLine("out of memory while the products were saved (stage C)");
    report.BeginStage("C");
    LogStage("C. OUTPUT TO FILE SAVING **********************************");
    SaveProducts(state, image, pools.insar);

    Say(" ");
    Say("***********************************************************");
    SetOutOfMemoryLine("out of memory while the pools were updated");
    WriteBackPools(pools, EntryOfThisRun(version), to_the_end);
    state.products.Accept();
    TellOfProducts(state, report);
}

/// Products and pools are complete: no memory for the last lines does not change that.
void WriteFooter() {
    try {
        Log().Footer();
    } catch (const std::bad_alloc&) {
    }
}

/// For the handler of a fatal signal.
void CleanUp() noexcept {
    UndoUnfinishedFiles();
    RemoveUnmarkedTemporaries();
}

void LogReason(const std::string& reason) {
    Log() << LOGGING_LEVEL::ALARM << reason << "\n";
}

}  // namespace

void RunVelmora(int argc, char** argv) {
    ReportOutOfMemory();
    SetFatalSignalHelp({BusErrorText, CleanUp});
    CONTROLLER_IFC controller;
    SIGNALS_HELD_BACK held_back;
    RUN_REPORT report;  // read while the process ends: what calls exit() leaves this frame as it is
    controller.SetKnownKeys(ControlKeyNames());
    controller.SetCheckFiles([&] { return CheckFilesOfParameters(controller); });
    controller.SetBeforeStart([&] { report.Begin(controller); });
    try {
        controller.init(argc, argv, true);
        const VERSION_RECORD version = VelmoraVersion(controller.get_binary_name());
        Log().Header(version, controller.get_configuration_file_name());
        TellOfMissingTraps();
        RunStages(controller, version, report, held_back);
        WriteFooter();
        controller.exit_success();
    } catch (const BASIC::TYPES::ERROR_ENUM_BASE_INVALID_VALUE& error) {
        // Before its base class: the user needs the list of valid values.
        LogReason(error.Message());
        LogReason(error.ValidValues());
    } catch (const ERROR_EXCEPTION& error) {
        LogReason(error.Message());
    } catch (const char* text) {
        LogReason(text);
    } catch (...) {
        LogReason("program aborted due to FATAL ERROR");
    }
    Log() << LOGGING_LEVEL::ALARM << "ORQ_MSG|ERROR|" << controller.get_binary_name() << " terminated with error!\n";
    controller.exit_error();
}
