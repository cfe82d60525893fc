/// \file prepared_scene.h
/// A scene made ready for the phase kernel's threads, with what they share beside it: compiled orbits, the list of
/// layers, the owners of pixels. Made before the threads start; settled after they have ended. Threads: constant while
/// they run, but for the lists of contested pixels, of which every block has its own.

#pragma once

#include <optional>
#include <vector>

#include "geometry/zero_doppler_rows.h"
#include "simulation/contested_pixels.h"
#include "simulation/pixel_layers.h"
#include "simulation/pixel_ownership.h"
#include "simulation/row_blocks.h"
#include "simulation/scene.h"

/// Solutions of a run, each of one DEM sample: zero Doppler towards one orbit, or the travel times of a single-pass
/// pair.
struct SOLUTION_COUNTS {
    long long in_rows = 0;     ///< by the vector code
    long long one_by_one = 0;  ///< where that gave up, or the orbit could not be compiled

    SOLUTION_COUNTS& operator+=(const SOLUTION_COUNTS& other) {
        in_rows += other.in_rows;
        one_by_one += other.one_by_one;
        return *this;
    }
};

class PREPARED_SCENE {
  public:
    /// Compiles the orbits over the scene's time and shares the image out among the blocks of ThreadCount() threads.
    /// @param scene  must outlive the object
    /// Errors: as ChosenVectorLevel
    explicit PREPARED_SCENE(const SCENE& scene);
    PREPARED_SCENE(const PREPARED_SCENE&) = delete;
    PREPARED_SCENE& operator=(const PREPARED_SCENE&) = delete;

    /// Writes what the threads have kept for the end. To be called once, when all of them have ended.
    void Settle() { SettleContestedPixels(contested_, ownership_, layers_, scene_.image.mask); }

    [[nodiscard]] const SCENE& Scene() const { return scene_; }
    [[nodiscard]] VECTOR_LEVEL VectorLevel() const { return vector_level_; }
    [[nodiscard]] const PIXEL_LAYERS& Layers() const { return layers_; }
    [[nodiscard]] const PIXEL_OWNERSHIP& Ownership() const { return ownership_; }
    [[nodiscard]] const std::optional<ROW_ORBIT>& MasterOrbit() const { return master_orbit_; }
    [[nodiscard]] const std::optional<ROW_ORBIT>& SlaveOrbit() const { return slave_orbit_; }
    /// The list of one block (a routine called outside the runner may have any number: the last one then).
    [[nodiscard]] CONTESTED_PIXELS& Contested(int block) {
        return contested_[std::min(static_cast<std::size_t>(block), contested_.size() - 1)];
    }

    /// Of one block, whose thread may change them.
    [[nodiscard]] SOLUTION_COUNTS& Counts(int block) {
        return counts_[std::min(static_cast<std::size_t>(block), counts_.size() - 1)];
    }
    [[nodiscard]] SOLUTION_COUNTS TotalCounts() const;

    /// Rows of the threads.
    [[nodiscard]] const std::vector<ROW_BLOCK>& Blocks() const { return blocks_; }

  private:
    [[nodiscard]] std::vector<BLOCK_BORDER> Borders() const;
    [[nodiscard]] BLOCK_BORDER BorderAt(int row) const;

    const SCENE& scene_;
    VECTOR_LEVEL vector_level_;
    std::optional<COMPILED_ORBIT> compiled_master_;
    std::optional<COMPILED_ORBIT> compiled_slave_;
    std::optional<ROW_ORBIT> master_orbit_;  ///< absent: the scene has no such orbit
    std::optional<ROW_ORBIT> slave_orbit_;
    PIXEL_LAYERS layers_;
    std::vector<ROW_BLOCK> blocks_;
    std::vector<CONTESTED_PIXELS> contested_;
    std::vector<SOLUTION_COUNTS> counts_;  ///< one per block
    PIXEL_OWNERSHIP ownership_;
};
