#include "simulation/pixel_ownership.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace {

constexpr int kNowhere = std::numeric_limits<int>::max();

int Rounded(double value) {
    return static_cast<int>(std::clamp(std::ceil(value), -1e9, 1e9));
}

/// Places that the border did not cross take their neighbour's value.
void FillGaps(std::vector<int>& begins) {
    for (std::size_t i = 1; i < begins.size(); ++i) {
        if (begins[i] == kNowhere) begins[i] = begins[i - 1];
    }
    for (std::size_t i = begins.size(); i-- > 1;) {
        if (begins[i - 1] == kNowhere) begins[i - 1] = begins[i];
    }
}

}  // namespace

PIXEL_OWNERSHIP::PIXEL_OWNERSHIP(int first_row, int rows, int columns, const std::vector<BLOCK_BORDER>& borders)
    : first_row_(first_row) {
    Orient(borders);
    const int first = borders_run_along_rows_ ? 0 : first_row;
    const int size = borders_run_along_rows_ ? columns : rows;
    for (std::size_t block = 1; block < borders.size(); ++block) {
        std::vector<int> begins = Trace(borders[block], first, size);
        if (!begins_.empty()) {
            // Borders may cross in the mountains; their order is what keeps the owners disjoint.
            for (int i = 0; i < size; ++i) begins[i] = std::max(begins[i], begins_.back()[i]);
        }
        begins_.push_back(std::move(begins));
    }
}

void PIXEL_OWNERSHIP::Orient(const std::vector<BLOCK_BORDER>& borders) {
    const BLOCK_BORDER* first = nullptr;
    for (const BLOCK_BORDER& border : borders) {
        if (border.empty()) continue;
        if (first == nullptr) {
            first = &border;
            borders_run_along_rows_ =
                std::abs(border.back().x - border.front().x) >= std::abs(border.back().y - border.front().y);
        }
        const POINT<double>& from = first->at(first->size() / 2);
        const POINT<double>& to = border[border.size() / 2];
        const double growth = borders_run_along_rows_ ? to.y - from.y : to.x - from.x;
        if (growth != 0.0) sign_ = growth > 0.0 ? 1 : -1;
    }
}

std::vector<int> PIXEL_OWNERSHIP::Trace(const BLOCK_BORDER& border, int first, int size) const {
    std::vector<int> begins(size, kNowhere);
    const auto along = [this, first](const POINT<double>& p) { return (borders_run_along_rows_ ? p.x : p.y) - first; };
    const auto across = [this](const POINT<double>& p) { return sign_ * (borders_run_along_rows_ ? p.y : p.x); };
    const auto place = [size](double value) { return static_cast<int>(std::clamp(std::rint(value), 0.0, size - 1.0)); };
    for (std::size_t i = 0; i + 1 < border.size(); ++i) {
        const auto& [from, to] =
            std::minmax(border[i], border[i + 1], [&](const auto& a, const auto& b) { return along(a) < along(b); });
        const double length = std::max(along(to) - along(from), 1.0);
        const int last = place(along(to));
        for (int k = place(along(from)); k <= last; ++k) {
            const double part = std::clamp((k - along(from)) / length, 0.0, 1.0);
            begins[k] = Rounded(across(from) + part * (across(to) - across(from)));
        }
    }
    FillGaps(begins);
    return begins;
}

PIXEL_OWNERSHIP::PLACE PIXEL_OWNERSHIP::PlaceOf(int row, int column) const {
    return borders_run_along_rows_ ? PLACE{column, sign_ * row} : PLACE{row - first_row_, sign_ * column};
}

bool PIXEL_OWNERSHIP::Owns(int block, int row, int column) const {
    const PLACE place = PlaceOf(row, column);
    const auto before = static_cast<std::size_t>(block);
    if (block > 0 && place.across < begins_[before - 1][place.along]) return false;
    return before >= begins_.size() || place.across < begins_[before][place.along];
}

bool PIXEL_OWNERSHIP::OwnsAll(int block, const PIXEL_BOX& box) const {
    if (begins_.empty()) return true;
    const auto before = static_cast<std::size_t>(block);
    const PLACE first = PlaceOf(box.first_row, box.first_column);
    const PLACE last = PlaceOf(box.last_row, box.last_column);
    const int lowest = std::min(first.across, last.across);
    const int highest = std::max(first.across, last.across);
    // Without a way out of the loops, which become vector code.
    unsigned outside = 0;
    if (block > 0) {
        const int* const begins = begins_[before - 1].data();
        for (int k = first.along; k <= last.along; ++k) outside |= lowest < begins[k] ? 1 : 0;
    }
    if (before < begins_.size()) {
        const int* const begins = begins_[before].data();
        for (int k = first.along; k <= last.along; ++k) outside |= highest >= begins[k] ? 1 : 0;
    }
    return outside == 0;
}

unsigned PIXEL_OWNERSHIP::OwnedLanes(int block, int row, int column, unsigned lanes) const {
    unsigned owned = 0;
    for (unsigned left = lanes; left != 0; left &= left - 1) {
        const int lane = std::countr_zero(left);
        if (Owns(block, row, column + lane)) owned |= 1U << lane;
    }
    return owned;
}

int PIXEL_OWNERSHIP::OwnerOf(int row, int column) const {
    int block = 0;
    while (!Owns(block, row, column)) ++block;
    return block;
}
