#include "simulation/pixel_ownership.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <utility>

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

/// Whether a test holds for every place first .. last; asked of a piece's bound first, which most often answers for
/// all.
template <class OF_PIECE, class OF_PLACE>
bool HoldsForAll(int first, int last, int piece_length, OF_PIECE of_piece, OF_PLACE of_place) {
    for (int piece = first / piece_length; piece <= last / piece_length; ++piece) {
        if (of_piece(piece)) continue;
        const int end = std::min(last, (piece + 1) * piece_length - 1);
        for (int k = std::max(first, piece * piece_length); k <= end; ++k)
            if (!of_place(k)) return false;
    }
    return true;
}

}  // namespace

PIXEL_OWNERSHIP::BORDER::BORDER(std::vector<int> places) : begins(std::move(places)) {
    for (std::size_t i = 0; i < begins.size(); i += kPlaces) {
        const auto from = begins.begin() + static_cast<std::ptrdiff_t>(i);
        const auto [lowest, highest] =
            std::minmax_element(from, from + std::min<std::ptrdiff_t>(kPlaces, begins.end() - from));
        bounds.push_back({*lowest, *highest});
    }
}

bool PIXEL_OWNERSHIP::BORDER::IsPassed(int first, int last, int across) const {
    return HoldsForAll(
        first, last, kPlaces, [&](int piece) { return bounds[piece].highest <= across; },
        [&](int place) { return begins[place] <= across; });
}

bool PIXEL_OWNERSHIP::BORDER::IsAhead(int first, int last, int across) const {
    return HoldsForAll(
        first, last, kPlaces, [&](int piece) { return bounds[piece].lowest > across; },
        [&](int place) { return begins[place] > across; });
}

PIXEL_OWNERSHIP::PIXEL_OWNERSHIP(int first_row, int rows, int columns, const std::vector<BLOCK_BORDER>& borders)
    : first_row_(first_row) {
    Orient(borders);
    const int first = borders_run_along_rows_ ? 0 : first_row;
    const int size = borders_run_along_rows_ ? columns : rows;
    for (std::size_t block = 1; block < borders.size(); ++block) {
        std::vector<int> begins = Trace(borders[block], first, size);
        if (!borders_.empty()) {
            // Borders may cross in the mountains; their order is what keeps the owners disjoint.
            for (int i = 0; i < size; ++i) begins[i] = std::max(begins[i], borders_.back().begins[i]);
        }
        borders_.emplace_back(std::move(begins));
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
    if (block > 0 && place.across < borders_[before - 1].begins[place.along]) return false;
    return before >= borders_.size() || place.across < borders_[before].begins[place.along];
}

bool PIXEL_OWNERSHIP::OwnsAll(int block, const PIXEL_BOX& box) const {
    if (borders_.empty()) return true;
    const auto before = static_cast<std::size_t>(block);
    const PLACE first = PlaceOf(box.first_row, box.first_column);
    const PLACE last = PlaceOf(box.last_row, box.last_column);
    const int lowest = std::min(first.across, last.across);
    const int highest = std::max(first.across, last.across);
    if (block > 0 && !borders_[before - 1].IsPassed(first.along, last.along, lowest)) return false;
    return before >= borders_.size() || borders_[before].IsAhead(first.along, last.along, highest);
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
