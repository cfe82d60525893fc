/// \file scene_in_use.h
/// The scene that the phase kernel's threads simulate, with what they share beside it. The kernel's argument carries
/// rows only, so the scene reaches the threads through here. Life: made before the threads start; settled after they
/// have ended. Threads: constant while they run, but for the lists of contested pixels, of which every block has its
/// own.

#pragma once

#include <optional>
#include <vector>

#include "geometry/zero_doppler_rows.h"
#include "simulation/contested_pixels.h"
#include "simulation/pixel_layers.h"
#include "simulation/pixel_ownership.h"
#include "simulation/scene.h"

class SCENE_IN_USE {
  public:
    /// Compiles the orbits over the scene's time and shares the image out among the blocks of ThreadCount() threads.
    /// Errors: while another one lives: logged at ALARM, then ERROR_ALGORITHM.
    explicit SCENE_IN_USE(const SCENE& scene);
    ~SCENE_IN_USE();
    SCENE_IN_USE(const SCENE_IN_USE&) = delete;
    SCENE_IN_USE& operator=(const SCENE_IN_USE&) = delete;

    /// Writes what the threads have kept for the end. To be called once, when all of them have ended.
    void Settle() { SettleContestedPixels(contested_, ownership_, layers_, scene_.image.mask); }

    [[nodiscard]] const SCENE& Scene() const { return scene_; }
    [[nodiscard]] const PIXEL_LAYERS& Layers() const { return layers_; }
    [[nodiscard]] const PIXEL_OWNERSHIP& Ownership() const { return ownership_; }
    [[nodiscard]] const std::optional<ROW_ORBIT>& MasterOrbit() const { return master_orbit_; }
    [[nodiscard]] const std::optional<ROW_ORBIT>& SlaveOrbit() const { return slave_orbit_; }
    /// The list of one block (a routine called outside the runner may have any number: the last one then).
    [[nodiscard]] CONTESTED_PIXELS& Contested(int block) {
        return contested_[std::min(static_cast<std::size_t>(block), contested_.size() - 1)];
    }

  private:
    [[nodiscard]] std::vector<BLOCK_BORDER> Borders() const;
    [[nodiscard]] BLOCK_BORDER BorderAt(int row) const;

    const SCENE& scene_;
    std::optional<COMPILED_ORBIT> compiled_master_;
    std::optional<COMPILED_ORBIT> compiled_slave_;
    std::optional<ROW_ORBIT> master_orbit_;  ///< absent: the scene has no such orbit
    std::optional<ROW_ORBIT> slave_orbit_;
    PIXEL_LAYERS layers_;
    std::vector<CONTESTED_PIXELS> contested_;
    PIXEL_OWNERSHIP ownership_;
};

/// The one in use. Errors: none in use is logged at ALARM, then ERROR_ALGORITHM.
[[nodiscard]] SCENE_IN_USE& CurrentScene();
