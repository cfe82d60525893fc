#include "simulation/sheets.h"

#include "simulation/layover_shadow.h"

void LINE_SHEETS::CountHidden(double near_look, double far_look, double& horizon, double near_pixel, double far_pixel,
                              PIXEL_COUNTS& hidden) {
    if (far_look <= horizon) {
        hidden.Add(near_pixel, far_pixel);
        return;
    }
    if (near_look < horizon) {
        const double part = (horizon - near_look) / (far_look - near_look);
        hidden.Add(near_pixel, near_pixel + part * (far_pixel - near_pixel));
    }
    horizon = far_look;
}

void LINE_SHEETS::CountSegment(const SEEN& near, const SEEN& far) {
    if (far.pixel < near.pixel) master_.turned.Add(near.pixel, far.pixel);
    if (far.look <= near.look) master_.away.Add(near.pixel, far.pixel);
    const double to_slave = first_slave_pixel_;
    if (far.slave_pixel < near.slave_pixel) {
        slave_turns_ = true;
        slave_.turned.Add(near.slave_pixel - to_slave, far.slave_pixel - to_slave);
    }
    if (far.slave_look <= near.slave_look) slave_.away.Add(near.slave_pixel - to_slave, far.slave_pixel - to_slave);
}

void LINE_SHEETS::CountRun(const TERRAIN_PROFILE& profile, std::size_t first, std::size_t last) {
    const auto add = [](PIXEL_COUNTS& counts, double from, double to) {
        counts.Add(from, to, static_cast<std::int16_t>(to >= from ? 1 : -1));
    };
    add(master_.forward, profile[first]->pixel, profile[last]->pixel);
    add(slave_.forward, profile[first]->slave_pixel - first_slave_pixel_,
        profile[last]->slave_pixel - first_slave_pixel_);
    for (std::size_t k = first; k < last; ++k) CountSegment(*profile[k], *profile[k + 1]);
}

/// Those that the segments over the image reach.
void LINE_SHEETS::FindSlavePixels(const TERRAIN_PROFILE& profile) {
    double lowest = 1e300;
    double highest = -1e300;
    for (std::size_t k = 0; k + 1 < profile.size(); ++k) {
        if (!profile[k] || !profile[k + 1]) continue;
        const auto [low, high] = std::minmax(profile[k]->pixel, profile[k + 1]->pixel);
        if (high < 0.0 || low > samples_) continue;
        lowest = std::min({lowest, profile[k]->slave_pixel, profile[k + 1]->slave_pixel});
        highest = std::max({highest, profile[k]->slave_pixel, profile[k + 1]->slave_pixel});
    }
    const double most = 4.0 * samples_ + 1e5;  // voids reach far
    first_slave_pixel_ = lowest <= highest ? std::floor(lowest) : 0.0;
    slave_pixels_ = static_cast<int>(std::clamp(highest - first_slave_pixel_, 0.0, most)) + 2;
}

void LINE_SHEETS::CountSheets(const TERRAIN_PROFILE& profile) {
    FindSlavePixels(profile);
    slave_turns_ = false;
    master_.Clear(samples_);
    slave_.Clear(slave_pixels_);
    for (SHEET_COUNTS* sheets : {&master_, &slave_}) sheets->hidden.Clear(samples_);
    double horizon = -1e300;
    double slave_horizon = -1e300;
    std::size_t run = 0;
    for (std::size_t k = 0; k < profile.size(); ++k) {
        if (!profile[k]) continue;
        const SEEN& here = *profile[k];
        if (k == 0 || !profile[k - 1]) {
            run = k;
            horizon = std::max(horizon, here.look);
            slave_horizon = std::max(slave_horizon, here.slave_look);
        } else {
            const SEEN& near = *profile[k - 1];
            CountHidden(near.look, here.look, horizon, near.pixel, here.pixel, master_.hidden);
            CountHidden(near.slave_look, here.slave_look, slave_horizon, near.pixel, here.pixel, slave_.hidden);
        }
        if (k + 1 == profile.size() || !profile[k + 1]) CountRun(profile, run, k);
    }
}

/// Of every sheet that reaches a pixel, the pixel of the slave next to it.
void LINE_SHEETS::MarkSlaveLayover(const TERRAIN_PROFILE& profile, unsigned char* flags) {
    if (!slave_turns_) return;
    layover_before_.assign(1, 0);
    for (int p = 0; p < slave_pixels_; ++p)
        layover_before_.push_back(layover_before_.back() + (slave_.Facing(p) > 1 ? 1 : 0));
    const auto place_of = [&](double slave_pixel) {
        return static_cast<int>(
            std::clamp(std::floor(slave_pixel - first_slave_pixel_ + 0.5), 0.0, slave_pixels_ - 1.0));
    };
    for (std::size_t k = 0; k + 1 < profile.size(); ++k) {
        if (!profile[k] || !profile[k + 1]) continue;
        const SEEN& near = *profile[k];
        const SEEN& far = *profile[k + 1];
        const auto [low, high] = std::minmax({place_of(near.slave_pixel), place_of(far.slave_pixel)});
        if (layover_before_[low] == layover_before_[high + 1]) continue;
        const PIXEL_SPAN pixels = PixelsBetween(near.pixel, far.pixel, samples_);
        for (int p = pixels.first; p < pixels.end; ++p) {
            const double part = (p - near.pixel) / (far.pixel - near.pixel);
            const int place = place_of(near.slave_pixel + part * (far.slave_pixel - near.slave_pixel));
            if (layover_before_[place] != layover_before_[place + 1]) flags[p] |= kSlaveLayover;
        }
    }
}

void LINE_SHEETS::Find(const TERRAIN_PROFILE& profile, unsigned char* flags) {
    CountSheets(profile);
    for (int p = 0; p < samples_; ++p) {
        const int all = master_.All(p);
        unsigned flag = 0;
        if (all < 1) flag = kNoTerrain;
        if (master_.Facing(p) > 1) flag |= kMasterLayover;
        if (all > 0 && master_.hidden.At(p) >= all) flag |= kMasterShadow;
        if (all > 0 && slave_.hidden.At(p) >= all) flag |= kSlaveShadow;
        flags[p] = static_cast<unsigned char>(flag);
    }
    MarkSlaveLayover(profile, flags);
}
