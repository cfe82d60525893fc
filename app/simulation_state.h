/// \file simulation_state.h
/// All that the stages of one run share. Stage A is its construction: a chain of values, each made once from those
/// before it and not changed after. Only the pixels of the result images and the products change later, in stages B and
/// C.

#pragma once

#include "app/acquisition/acquisitions.h"
#include "app/products/product_writer.h"
#include "app/products/result_images.h"
#include "app/products/slabs.h"
#include "app/request/request.h"
#include "app/run_pools.h"
#include "app/scene/output_sizes.h"
#include "app/scene/radar_pair.h"
#include "app/scene/simulation_area.h"
#include "app/terrain/dem_survey.h"
#include "app/terrain/terrain.h"

/// One per run: the members point into each other.
struct SIMULATION_STATE {
    /// Every check of stage A stops the run before any simulation work is done and before anything is allocated.
    /// @throws as the makers of the members
    SIMULATION_STATE(const REQUEST& what_was_asked, RUN_POOLS& pools);
    SIMULATION_STATE(const SIMULATION_STATE&) = delete;
    SIMULATION_STATE& operator=(const SIMULATION_STATE&) = delete;

    // In the order of their making, which is also that of the log.
    const REQUEST request;            ///< what was asked
    const ACQUISITIONS acquisitions;  ///< what the acquisitions' pools say
    const IMAGE_SIZE simulated;
    PARAMETER_POOL dem_pool;
    const RADAR_PAIR own_axes;  ///< each acquisition on its own orbit's time axis
    const TERRAIN terrain;
    const RADAR_PAIR pair;  ///< what the kernel works with
    const SCENE_IN_DEM place;
    const VALID_HEIGHTS valid_heights;
    const float initial_phase;
    const DEM_SURVEY survey;
    const OUTPUT_SIZES sizes;
    PRODUCT_WRITER products;  ///< has all the products' files and their room
    const SLAB_PLAN slabs;
    RESULT_IMAGES images;  ///< of the whole image, or of a slab
    const SCENE scene;     ///< what the kernel reads and where it writes: the whole image or the first slab
};
