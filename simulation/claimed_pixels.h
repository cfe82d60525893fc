/// \file claimed_pixels.h
/// The master pixels that a thread's cells have reached: one bit each, so that the first cell keeps a pixel. Beside the
/// mask, whose bytes several threads write and which are only written here: whole words are read again as soon as the
/// next cell needs them, which bytes stored under a vector's mask would delay.
/// Memory: one bit per master pixel, of which the system provides what the thread's cells touch.
/// Threads: one object per thread.

#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>

class CLAIMED_PIXELS {
  public:
    /// @throws std::bad_alloc
    CLAIMED_PIXELS(int rows, int columns)
        : words_per_row_(static_cast<std::size_t>(columns) / kBits + 2),  // eight bits may begin at the last column
          words_(static_cast<std::uint64_t*>(
              std::calloc(words_per_row_ * static_cast<std::size_t>(rows) + 1, sizeof(std::uint64_t)))) {
        if (words_ == nullptr) throw std::bad_alloc();
    }

    /// Bit i: pixel column + i is claimed, for i = 0 .. 7.
    [[nodiscard]] unsigned EightFrom(int row, int column) const {
        const std::uint64_t* const word = WordOf(row, column);
        const unsigned shift = static_cast<unsigned>(column) % kBits;
        std::uint64_t bits = word[0] >> shift;
        if (shift > kBits - 8) bits |= word[1] << (kBits - shift);
        return static_cast<unsigned>(bits & 0xff);
    }

    /// @param lanes  bit i: claim pixel column + i, for i = 0 .. 7
    void Claim(int row, int column, unsigned lanes) {
        std::uint64_t* const word = WordOf(row, column);
        const unsigned shift = static_cast<unsigned>(column) % kBits;
        word[0] |= std::uint64_t{lanes} << shift;
        if (shift > kBits - 8) word[1] |= std::uint64_t{lanes} >> (kBits - shift);
    }

  private:
    static constexpr unsigned kBits = 64;
    struct FREE_DELETER {
        void operator()(std::uint64_t* words) const { std::free(words); }
    };

    [[nodiscard]] std::uint64_t* WordOf(int row, int column) const {
        return words_.get() + static_cast<std::size_t>(row) * words_per_row_ + static_cast<unsigned>(column) / kBits;
    }

    std::size_t words_per_row_;
    std::unique_ptr<std::uint64_t, FREE_DELETER> words_;
};
