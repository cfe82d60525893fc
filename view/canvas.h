/// \file canvas.h
/// A picture in memory, with text in a small font of its own: capital letters are drawn as small ones.

#pragma once

#include <string>
#include <vector>

#include "view/colour_tables.h"

class CANVAS {
  public:
    CANVAS(int columns, int rows, COLOUR background)
        : columns_(columns), rows_(rows), pixels_(static_cast<std::size_t>(columns) * rows, background) {}

    [[nodiscard]] int Columns() const { return columns_; }
    [[nodiscard]] int Rows() const { return rows_; }
    [[nodiscard]] const std::vector<COLOUR>& Pixels() const { return pixels_; }

    /// What lies outside is cut off.
    void Set(int column, int row, COLOUR colour);
    void Fill(int column, int row, int columns, int rows, COLOUR colour);
    /// @param column, row  upper left corner
    void Write(int column, int row, const std::string& text, COLOUR colour);

  private:
    void WriteGlyph(int column, int row, char letter, COLOUR colour);

    int columns_;
    int rows_;
    std::vector<COLOUR> pixels_;
};

/// Height of a line of text, pixels.
inline constexpr int kTextRows = 18;

/// Width of a text, pixels.
[[nodiscard]] int TextColumns(const std::string& text);
