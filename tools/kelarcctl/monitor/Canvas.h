#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kelarcctl {

/// The meaning of a cell, shown by colour, or otherwise on a terminal without colours.
enum class Style : unsigned char
{
    plain,
    dim,
    strong,
    good,
    warning,
    bad,
    selected,
};

struct Cell
{
    char32_t glyph = U' ';  ///< a character one column wide
    Style style = Style::plain;
};

/// A rectangle of cells. Text outside of it is cut off.
class Canvas
{
public:
    Canvas(int rows, int columns);

    int rows() const { return m_rows; }
    int columns() const { return m_columns; }
    const Cell& at(int row, int column) const;

    void put(int row, int column, char32_t glyph, Style style = Style::plain);
    /// Writes one cell per byte. Bytes other than printable ASCII appear as '?', so that no text can shift the columns.
    /// Returns the column after the text.
    int text(int row, int column, std::string_view text, Style style = Style::plain);
    void textAtEnd(int row, std::string_view text, Style style = Style::plain);
    void paste(const Canvas& other, int row, int column);

    /// Gives every cell this style.
    void restyle(Style style);

    /// A row as UTF-8, without trailing spaces.
    std::string line(int row) const;

private:
    int m_rows;
    int m_columns;
    std::vector<Cell> m_cells;
};

/// The graphic characters.
struct Glyphs
{
    std::u32string levels;  ///< bars from empty to full
    char32_t ring;          ///< for the circles of the sky
    char32_t rule;          ///< for horizontal lines

    /// The bar for a fraction, 0 to 1; anything above 0 is visible.
    char32_t level(double part) const;
};

const Glyphs& unicodeGlyphs();
const Glyphs& asciiGlyphs();

std::string utf8Of(char32_t glyph);

}  // namespace kelarcctl
