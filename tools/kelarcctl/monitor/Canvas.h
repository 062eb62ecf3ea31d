#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kelarcctl {

/// What a cell means; a terminal without colours shows it in another way.
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
    char32_t glyph = U' ';  ///< one that takes one column
    Style style = Style::plain;
};

/// A rectangle of cells. What is put outside of it is cut off.
class Canvas
{
public:
    Canvas(int rows, int columns);

    int rows() const { return m_rows; }
    int columns() const { return m_columns; }
    const Cell& at(int row, int column) const;

    void put(int row, int column, char32_t glyph, Style style = Style::plain);
    /// One cell a byte: what is not printable ASCII appears as '?', so that nobody's text can move the columns. Returns
    /// the column behind it.
    int text(int row, int column, std::string_view text, Style style = Style::plain);
    void textAtEnd(int row, std::string_view text, Style style = Style::plain);
    void paste(const Canvas& other, int row, int column);

    /// Gives every cell this style.
    void restyle(Style style);

    /// A row as UTF-8, without the spaces at its end.
    std::string line(int row) const;

private:
    int m_rows;
    int m_columns;
    std::vector<Cell> m_cells;
};

/// The characters that are no letters.
struct Glyphs
{
    std::u32string levels;  ///< from nothing to all
    char32_t ring;          ///< of the sky's circles
    char32_t rule;          ///< of horizontal lines

    /// For a part of the whole, 0 to 1; what is more than nothing shows.
    char32_t level(double part) const;
};

const Glyphs& unicodeGlyphs();
const Glyphs& asciiGlyphs();

std::string utf8Of(char32_t glyph);

}  // namespace kelarcctl
