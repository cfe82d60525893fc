#include "app/phase_simulation.h"

#include "lib/baselib/logging/logging.h"
#include "simulation/dem2phase.h"
#include "simulation/threads.h"

void SimulatePhase(SIMULATION_STATE& state) {
    const SCENE_IN_USE in_use(state.scene);
    const DEM_RANGE& rows = state.scene.simulated;
    THREADS<DEM2PHASE_ARG, unsigned int> threads(static_cast<unsigned int>(rows.first_row),
                                                 static_cast<unsigned int>(rows.last_row), DEM2PHASE_Thread);
    Log().Message(LOGGING_LEVEL::INFO, " Initialised dem2phase_arg");
    threads.Run();
    in_use.SettleContestedPixels();
}
