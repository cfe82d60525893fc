#include "app/phase_simulation.h"

#include "simulation/dem2phase.h"

void SimulatePhase(SIMULATION_STATE& state) {
    SimulateScene(state.scene);
}
