/// \file sheets.h
/// The sheets of terrain that reach the pixels of a line, and the flags that follow (layover_shadow.h).
/// Threads: belongs to one.

#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "simulation/terrain_profiles.h"

/// Whole numbers p with low <= p < high are first .. end - 1, between 0 and the count.
struct PIXEL_SPAN {
    int first;
    int end;
};

inline PIXEL_SPAN PixelsBetween(double a, double b, int count) {
    const auto place = [count](double value) {
        return static_cast<int>(std::clamp(std::ceil(value), 0.0, static_cast<double>(count)));
    };
    return {place(std::min(a, b)), place(std::max(a, b))};
}

/// How many of something reach each pixel of a line.
class PIXEL_COUNTS {
  public:
    void Clear(int count) { counts_.assign(static_cast<std::size_t>(count), 0); }
    void Add(double from, double to, std::int16_t step = 1) {
        const PIXEL_SPAN pixels = PixelsBetween(from, to, static_cast<int>(counts_.size()));
        for (int p = pixels.first; p < pixels.end; ++p) counts_[p] = static_cast<std::int16_t>(counts_[p] + step);
    }
    [[nodiscard]] int At(int pixel) const { return counts_[pixel]; }

  private:
    std::vector<std::int16_t> counts_;
};

/// What reaches the pixels of one line, towards one satellite. The profile runs outwards: sheets that are turned over
/// count backwards, so that of any run of it as many more run forwards as backwards as its ends tell.
struct SHEET_COUNTS {
    PIXEL_COUNTS forward;  ///< less those that are turned over
    PIXEL_COUNTS turned;
    PIXEL_COUNTS away;    ///< facing away
    PIXEL_COUNTS hidden;  ///< by the master's pixels, for either satellite

    void Clear(int count) {
        for (PIXEL_COUNTS* counts : {&forward, &turned, &away}) counts->Clear(count);
    }
    [[nodiscard]] int All(int pixel) const { return forward.At(pixel) + 2 * turned.At(pixel); }
    [[nodiscard]] int Facing(int pixel) const { return All(pixel) - away.At(pixel); }
};

class LINE_SHEETS {
  public:
    /// @param samples  of a line
    explicit LINE_SHEETS(int samples) : samples_(samples) {}

    /// The flags of one line (LAYOVER_SHADOW_BIT).
    void Find(const TERRAIN_PROFILE& profile, unsigned char* flags);

  private:
    void CountSheets(const TERRAIN_PROFILE& profile);
    void CountRun(const TERRAIN_PROFILE& profile, std::size_t first, std::size_t last);
    void CountSegment(const SEEN& near, const SEEN& far);
    static void CountHidden(double near_look, double far_look, double& horizon, double near_pixel, double far_pixel,
                            PIXEL_COUNTS& hidden);
    void FindSlavePixels(const TERRAIN_PROFILE& profile);
    void MarkSlaveLayover(const TERRAIN_PROFILE& profile, unsigned char* flags);

    int samples_;
    SHEET_COUNTS master_;
    SHEET_COUNTS slave_;
    double first_slave_pixel_ = 0.0;
    int slave_pixels_ = 0;
    bool slave_turns_ = false;         ///< some sheet of the line is turned over, as the slave sees it
    std::vector<int> layover_before_;  ///< pixels of the slave with layover before each, and after the last
};
