#include "app/run_velmora.h"

#include <ctime>
#include <string>

#include "app/keys/configuration_keys.h"
#include "app/phase_simulation.h"
#include "app/pools_and_area.h"
#include "app/products/output_products.h"
#include "app/products/pool_write_back.h"
#include "app/products/software_history.h"
#include "app/request/run_configuration.h"
#include "app/simulation_state.h"
#include "app/velmora_version.h"
#include "lib/baselib/controller/controller_ifc.h"
#include "lib/baselib/errors/enum_base.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"
#include "lib/baselib/pool/parameter_pool.h"
#include "lib/baselib/pool/parameter_pool_read_write_change.h"
#include "lib/baselib/vectors/vector_level.h"

namespace {

void LogStage(const char* banner) {
    Log().Message(LOGGING_LEVEL::INFO, " ");
    Log().Message(LOGGING_LEVEL::INFO, "%s", banner);
    Log().Message(LOGGING_LEVEL::INFO, " ");
}

HISTORY_ENTRY EntryOfThisRun(const VERSION_RECORD& version) {
    return EntryOfRun(version, Log().OpeningTime(), std::time(nullptr));
}

/// The stages in their order. The pools live in here: they are closed before the footer is written.
void RunStages(SIMULATION_STATE& state, CONTROLLER_IFC& controller, const VERSION_RECORD& version) {
    PARAMETER_POOL master_pool;
    PARAMETER_POOL slave_pool;
    PARAMETER_POOL_READ_WRITE_CHANGE insar_pool;
    LOG_POOL log_pool;

    LogStage("A. READ CONFIGURATION *************************************");
    (void)ChosenVectorLevel();  // stage B's affair, but refused before the work of stage A
    ReadConfiguration(state, controller, master_pool, slave_pool, insar_pool, log_pool);
    TryHistory(*log_pool.pool, EntryOfThisRun(version));
    ReadPoolsAndArea(state, master_pool, slave_pool, insar_pool);

    LogStage("B. PHASE SIMULATION ***************************************");
    SimulatePhase(state);

    LogStage("C. OUTPUT TO FILE SAVING **********************************");
    SaveProducts(state);

    Log().Message(LOGGING_LEVEL::INFO, " ");
    Log().Message(LOGGING_LEVEL::INFO, "***********************************************************");
    WriteBackPools(log_pool, insar_pool, EntryOfThisRun(version));
}

void LogReason(const std::string& reason) {
    Log() << LOGGING_LEVEL::ALARM << reason << "\n";
}

/// The one object that all stages share.
SIMULATION_STATE& State() {
    static SIMULATION_STATE state;
    return state;
}

}  // namespace

void RunVelmora(int argc, char** argv) {
    CONTROLLER_IFC controller;
    controller.SetKnownKeys(ConfigurationKeyNames());
    try {
        controller.init(argc, argv, true);
        const VERSION_RECORD version = VelmoraVersion(controller.get_binary_name());
        Log().Header(version, controller.get_configuration_file_name());
        RunStages(State(), controller, version);
        Log().Footer();
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
