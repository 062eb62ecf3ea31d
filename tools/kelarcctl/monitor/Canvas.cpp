#include "kelarcctl/monitor/Canvas.h"

#include <algorithm>
#include <cmath>

namespace kelarcctl {

Canvas::Canvas(int rows, int columns)
    : m_rows(std::max(rows, 0)), m_columns(std::max(columns, 0)),
      m_cells(static_cast<std::size_t>(m_rows) * static_cast<std::size_t>(m_columns))
{
}

const Cell& Canvas::at(int row, int column) const
{
    return m_cells[static_cast<std::size_t>(row) * static_cast<std::size_t>(m_columns) +
                   static_cast<std::size_t>(column)];
}

void Canvas::put(int row, int column, char32_t glyph, Style style)
{
    if (row < 0 || row >= m_rows || column < 0 || column >= m_columns)
        return;
    m_cells[static_cast<std::size_t>(row) * static_cast<std::size_t>(m_columns) + static_cast<std::size_t>(column)] = {
        glyph, style};
}

int Canvas::text(int row, int column, std::string_view text, Style style)
{
    for (const char c : text)
        put(row, column++, c >= ' ' && c <= '~' ? static_cast<char32_t>(c) : U'?', style);
    return column;
}

void Canvas::textAtEnd(int row, std::string_view text, Style style)
{
    this->text(row, m_columns - static_cast<int>(text.size()), text, style);
}

void Canvas::paste(const Canvas& other, int row, int column)
{
    for (int r = 0; r < other.rows(); ++r)
        for (int c = 0; c < other.columns(); ++c)
            put(row + r, column + c, other.at(r, c).glyph, other.at(r, c).style);
}

void Canvas::restyle(Style style)
{
    for (Cell& cell : m_cells)
        cell.style = style;
}

std::string Canvas::line(int row) const
{
    std::string line;
    std::size_t used = 0;
    for (int column = 0; column < m_columns; ++column) {
        line += utf8Of(at(row, column).glyph);
        if (at(row, column).glyph != U' ')
            used = line.size();
    }
    line.resize(used);
    return line;
}

char32_t Glyphs::level(double part) const
{
    const int top = static_cast<int>(levels.size()) - 1;
    const int level = part <= 0 ? 0 : std::clamp(static_cast<int>(std::ceil(part * top)), 1, top);
    return levels[static_cast<std::size_t>(level)];
}

const Glyphs& unicodeGlyphs()
{
    static const Glyphs glyphs{U" \u2581\u2582\u2583\u2584\u2585\u2586\u2587\u2588", U'\u00b7', U'\u2500'};
    return glyphs;
}

const Glyphs& asciiGlyphs()
{
    static const Glyphs glyphs{U" .:-=+*#", U'.', U'-'};
    return glyphs;
}

std::string utf8Of(char32_t glyph)
{
    const auto byte = [](char32_t value) { return static_cast<char>(static_cast<unsigned char>(value)); };
    if (glyph < 0x80)
        return {byte(glyph)};
    if (glyph < 0x800)
        return {byte(0xc0 | glyph >> 6), byte(0x80 | (glyph & 0x3f))};
    return {byte(0xe0 | glyph >> 12), byte(0x80 | (glyph >> 6 & 0x3f)), byte(0x80 | (glyph & 0x3f))};
}

}  // namespace kelarcctl
