#include "simulation/scene.h"

#include <algorithm>
#include <atomic>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"
#include "simulation/thread_count.h"

namespace {

std::atomic<SCENE_IN_USE*> current_scene{nullptr};

}  // namespace

SCENE_IN_USE::SCENE_IN_USE(const SCENE& scene) : scene_(scene) {
    const int rows = scene.simulated.last_row - scene.simulated.first_row;
    const int blocks = std::max(1, std::min(ThreadCount(), rows));  // as the runner cuts them
    for (int block = 0; block < blocks; ++block) claims_.emplace_back(block);
    SCENE_IN_USE* none = nullptr;
    if (!current_scene.compare_exchange_strong(none, this)) {
        Log().Message(LOGGING_LEVEL::ALARM, "phase kernel: another scene is being simulated");
        throw ERROR_ALGORITHM();
    }
}

SCENE_IN_USE::~SCENE_IN_USE() {
    current_scene.store(nullptr);
}

void SCENE_IN_USE::SettleContestedPixels() const {
    for (auto block = claims_.rbegin(); block != claims_.rend(); ++block) block->StoreKept(scene_);
}

SCENE_IN_USE& CurrentScene() {
    SCENE_IN_USE* const scene = current_scene.load();
    if (scene == nullptr) {
        Log().Message(LOGGING_LEVEL::ALARM, "phase kernel: no scene to simulate");
        throw ERROR_ALGORITHM();
    }
    return *scene;
}
