/// \file claimed_pixels.h
/// The master pixels that a thread's cells have reached: one bit each, so that the first cell keeps a pixel. Beside the
/// mask, whose bytes several threads write: whole words are read again as soon as the next cell needs them.
/// Memory: one bit per master pixel, of which the system provides what the thread's cells touch.
/// Threads: one object per thread.

#pragma once

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <new>

class CLAIMED_PIXELS {
  public:
    /// @throws std::bad_alloc
    CLAIMED_PIXELS(int first_row, int rows, int columns)
        : first_row_(first_row),
          words_per_row_(static_cast<std::size_t>(columns) / kBits + 2),  // eight bits may begin at the last column
          words_(static_cast<std::uint64_t*>(
              std::calloc(words_per_row_ * static_cast<std::size_t>(rows) + 1, sizeof(std::uint64_t)))) {
        if (words_ == nullptr) throw std::bad_alloc();
    }
    ~CLAIMED_PIXELS() { std::free(words_); }
    CLAIMED_PIXELS(const CLAIMED_PIXELS&) = delete;
    CLAIMED_PIXELS& operator=(const CLAIMED_PIXELS&) = delete;

    static constexpr int kBits = 64;

    /// Bit i: pixel column + i is claimed, for i = 0 .. 7.
    [[nodiscard]] [[gnu::always_inline]] unsigned EightFrom(int row, int column) const {
        const std::uint64_t* const word = WordsOf(row) + static_cast<unsigned>(column) / kBits;
        const unsigned shift = static_cast<unsigned>(column) % kBits;
        std::uint64_t bits = word[0] >> shift;
        if (shift > kBits - 8) bits |= word[1] << (kBits - shift);
        return static_cast<unsigned>(bits & 0xff);
    }

    /// @param lanes  bit i: claim pixel column + i, for i = 0 .. 7
    [[gnu::always_inline]] void Claim(int row, int column, unsigned lanes) {
        std::uint64_t* const word = WordsOf(row) + static_cast<unsigned>(column) / kBits;
        const unsigned shift = static_cast<unsigned>(column) % kBits;
        word[0] |= std::uint64_t{lanes} << shift;
        if (shift > kBits - 8) word[1] |= std::uint64_t{lanes} >> (kBits - shift);
    }

    /// To be called before pixels of these rows are claimed.
    [[gnu::always_inline]] void TouchRows(int first, int last) {
        if (first < first_touched_) first_touched_ = first;
        if (last > last_touched_) last_touched_ = last;
    }
    /// Outside these rows nothing is claimed. None: the first is behind the last.
    [[nodiscard]] int FirstTouched() const { return first_touched_; }
    [[nodiscard]] int LastTouched() const { return last_touched_; }

    /// Bit i of word w: pixel 64 w + i of the row.
    [[nodiscard]] [[gnu::always_inline]] std::uint64_t* WordsOf(int row) const {
        return words_ + static_cast<std::size_t>(row - first_row_) * words_per_row_;
    }

  private:
    int first_row_;
    std::size_t words_per_row_;
    std::uint64_t* words_;
    int first_touched_ = std::numeric_limits<int>::max();
    int last_touched_ = -1;
};
