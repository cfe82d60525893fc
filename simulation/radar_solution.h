/// \file radar_solution.h
/// The DEM in radar geometry, row by row: the samples that the cells between two DEM rows need, solved towards both
/// orbits as whole rows, each sample once; and the cells filled into the master image's grids. Invariants: a sample is
/// solved towards the master when it is the first corner (row r, column c) of a cell that touches the simulated area,
/// or a corner of a cell that is filled; towards the slave in the latter case only. Nothing else is asked of an orbit:
/// some interpolations end the process outside their data. A cell is filled when one of its corners lies in the area
/// and its first corner within 1000 samples and lines of the image. Memory: two rows of samples, allocated by the
/// constructor. Threads: one object per thread.

#pragma once

#include <array>

#include "simulation/area_rows.h"
#include "simulation/bistatic_solution.h"
#include "simulation/dem_row.h"
#include "simulation/prepared_scene.h"
#include "simulation/triangle_filler.h"

class RADAR_SOLUTION {
  public:
    /// @param prepared  must outlive the object
    /// @param block   of DEM rows, the thread's own
    RADAR_SOLUTION(PREPARED_SCENE& prepared, int block);
    /// Logs the statistics of the bistatic iteration (in monostatic mode their heading alone).
    ~RADAR_SOLUTION();
    RADAR_SOLUTION(const RADAR_SOLUTION&) = delete;
    RADAR_SOLUTION& operator=(const RADAR_SOLUTION&) = delete;

    /// Solves and fills the cells between DEM rows row and row + 1. Rows are given in increasing order, one by one.
    void SimulateRow(int row);

    /// To be called once, after the last row: marks the pixels of this thread as simulated.
    void Finish() { filler_.WriteMask(); }

    [[nodiscard]] const SOLUTION_COUNTS& Counts() const { return counts_; }

  private:
    void LookAtCells(int row);
    void Begin(RADAR_ROW& samples, int row) const;
    void MarkTouchedCells();
    void DropFarCells();
    [[nodiscard]] bool IsWithinExtent(int i) const;
    void SolveTowards(const std::optional<ROW_ORBIT>& orbit, const RADAR_ROW& samples, int first, int count,
                      std::vector<double>& time_s, std::vector<double>& range_m);
    void SolveMaster(RADAR_ROW& samples);
    void SolveCorners(RADAR_ROW& samples);
    void SolveTravelTimes(RADAR_ROW& samples, int first, int count);

    const SCENE& scene_;
    const PREPARED_SCENE& prepared_;
    AREA_ROWS area_;
    DEM_ROW dem_row_;
    TRIANGLE_FILLER filler_;
    BISTATIC_SOLUTION bistatic_;
    std::array<RADAR_ROW, 2> rows_;
    RADAR_ROW* upper_;
    RADAR_ROW* lower_;
    int first_ = 0;  ///< elements to look at: cells first_ .. last_ - 1, samples first_ .. last_
    int last_ = 0;
    SOLUTION_COUNTS counts_{};
    std::vector<unsigned char> cells_;  ///< 1: the cell right of and below this sample is to be filled
};
