#include "simulation/scene.h"

#include <atomic>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"

namespace {

std::atomic<const SCENE*> current_scene{nullptr};

}  // namespace

SCENE_IN_USE::SCENE_IN_USE(const SCENE& scene) {
    const SCENE* none = nullptr;
    if (!current_scene.compare_exchange_strong(none, &scene)) {
        Log().Message(LOGGING_LEVEL::ALARM, "phase kernel: another scene is being simulated");
        throw ERROR_ALGORITHM();
    }
}

SCENE_IN_USE::~SCENE_IN_USE() {
    current_scene.store(nullptr);
}

const SCENE& CurrentScene() {
    const SCENE* scene = current_scene.load();
    if (scene == nullptr) {
        Log().Message(LOGGING_LEVEL::ALARM, "phase kernel: no scene to simulate");
        throw ERROR_ALGORITHM();
    }
    return *scene;
}
