/// \file pixel_ownership.h
/// Which block of DEM rows may write a master pixel at once, when several threads fill the image.
/// The rule of the products: a pixel belongs to the lowest DEM row, then the lowest column, whose cell holds it; that
/// is also what one thread does, which walks them in this order. Blocks are disjoint in DEM rows but not quite in
/// pixels: where they meet, and where mountains lean over, cells of several blocks hold one pixel. Hence: (1) every
/// pixel has one owner, guessed before the threads start from where the blocks' borders lie in the image. A
///     thread writes only what it owns, mask and all layers, so no two threads touch one element and no atomic is
///     needed;
/// (2) what a thread would write elsewhere it keeps in a list of its own (CONTESTED_PIXELS);
/// (3) after the threads have ended, the lists are settled, highest block first: a kept pixel is written unless a lower
///     block has written it. The last writer is then the lowest block that holds the pixel, with its first cell.
/// The guess decides how long the lists are, never what the products hold.
/// Threads: constant after construction.

#pragma once

#include <vector>

#include "lib/baselib/containers/records.h"

struct PIXEL_BOX {
    int first_column = 0;
    int last_column = -1;
    int first_row = 0;
    int last_row = -1;
};

/// Pixels (x: range, y: azimuth) along the first row of a block, in order of DEM columns.
using BLOCK_BORDER = std::vector<POINT<double>>;

class PIXEL_OWNERSHIP {
  public:
    /// @param borders  one per block; fewer than two: block 0 owns everything
    PIXEL_OWNERSHIP(int first_row, int rows, int columns, const std::vector<BLOCK_BORDER>& borders);

    [[nodiscard]] bool Owns(int block, int row, int column) const;
    [[nodiscard]] bool OwnsAll(int block, const PIXEL_BOX& box) const;
    /// Those of a set of lanes (bit i: pixel column + i) whose pixels the block owns.
    [[nodiscard]] unsigned OwnedLanes(int block, int row, int column, unsigned lanes) const;
    [[nodiscard]] int OwnerOf(int row, int column) const;

  private:
    /// The image's rows and columns as the borders see them: borders run along `along` and are crossed along `across`.
    struct PLACE {
        int along;
        int across;
    };
    /// Where a block begins, across the border, for every place along it; and in pieces of kPlaces places each.
    struct BORDER {
        static constexpr int kPlaces = 64;
        struct BOUNDS {
            int lowest;
            int highest;
        };
        explicit BORDER(std::vector<int> begins);
        /// Whether all of first .. last begin at `across` or before it.
        [[nodiscard]] bool IsPassed(int first, int last, int across) const;
        /// Whether all of first .. last begin behind `across`.
        [[nodiscard]] bool IsAhead(int first, int last, int across) const;

        std::vector<int> begins;
        std::vector<BOUNDS> bounds;
    };
    [[nodiscard]] PLACE PlaceOf(int row, int column) const;
    void Orient(const std::vector<BLOCK_BORDER>& borders);
    [[nodiscard]] std::vector<int> Trace(const BLOCK_BORDER& border, int first, int size) const;

    int first_row_;
    bool borders_run_along_rows_ = true;  ///< of the image, from column to column
    int sign_ = 1;                        ///< of the pixel coordinate that grows with the block
    std::vector<BORDER> borders_;         ///< of blocks 1, 2, ...; never decreasing from block to block
};
