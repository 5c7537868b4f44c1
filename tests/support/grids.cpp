#include "support/grids.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <gtest/gtest.h>
#include <utility>

namespace gridforge::test {
namespace {

std::string shortest(double value)
{
    std::array<char, 64> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    return {text.data(), end};
}

std::string headerLines(std::int64_t ncols, std::int64_t nrows, const GridOptions& options)
{
    const std::string& end = options.lineEnd;
    return "ncols " + std::to_string(ncols) + end + "nrows " + std::to_string(nrows) + end + "xllcorner " +
           shortest(options.xll) + end + "yllcorner " + shortest(options.yll) + end + "cellsize " +
           shortest(options.cellsize) + end + "NODATA_value " + shortest(options.null) + end;
}

std::int64_t columnsOf(const Cells& cells)
{
    return cells.empty() ? 0 : static_cast<std::int64_t>(cells.front().size());
}

// Takes the next line, which must end in CR LF.
std::string_view takeLine(std::string_view& text)
{
    const auto end = text.find("\r\n");
    if (end == std::string_view::npos) {
        ADD_FAILURE() << "line without CR LF at its end: " << text.substr(0, 80);
        const std::string_view rest = std::exchange(text, {});
        return rest.substr(0, rest.find_first_of("\r\n"));
    }
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end + 2);
    EXPECT_EQ(line.find_first_of("\r\n"), std::string_view::npos) << "lone CR or LF in: " << line.substr(0, 80);
    return line;
}

double number(std::string_view text)
{
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) {
        ADD_FAILURE() << "not a number: \"" << text << '"';
    }
    return value;
}

double takeValue(std::string_view& text, std::string_view key)
{
    const std::string_view line = takeLine(text);
    if (!line.starts_with(key)) {
        ADD_FAILURE() << "expected \"" << key << "\", found \"" << line << '"';
        return 0;
    }
    return number(line.substr(key.size()));
}

WrittenGrid takeHeader(std::string_view& text)
{
    WrittenGrid grid;
    grid.ncols = static_cast<std::int64_t>(takeValue(text, "ncols "));
    grid.nrows = static_cast<std::int64_t>(takeValue(text, "nrows "));
    grid.xll = takeValue(text, "xllcorner ");
    grid.yll = takeValue(text, "yllcorner ");
    grid.cellsize = takeValue(text, "cellsize ");
    grid.null = takeValue(text, "NODATA_value ");
    return grid;
}

std::vector<double> numbersOf(std::string_view line)
{
    std::vector<double> values;
    for (auto start = line.find_first_not_of(' '); start != std::string_view::npos;) {
        const auto end = std::min(line.find(' ', start), line.size());
        values.push_back(number(line.substr(start, end - start)));
        start = line.find_first_not_of(' ', end);
    }
    return values;
}

} // namespace

Cells rowColumnCells()
{
    Cells cells;
    for (int row = 9; row >= 1; --row) {
        cells.emplace_back();
        for (int column = 1; column <= 9; ++column) {
            cells.back().push_back(10 * row + column);
        }
    }
    return cells;
}

std::string ascGrid(const Cells& cells, const GridOptions& options)
{
    std::string text = headerLines(columnsOf(cells), static_cast<std::int64_t>(cells.size()), options);
    for (const auto& row : cells) {
        std::string_view separator;
        for (const double cell : row) {
            text.append(separator).append(shortest(cell));
            separator = " ";
        }
        text += options.lineEnd;
    }
    return text;
}

std::string fltCells(const Cells& cells)
{
    std::string bytes;
    for (const auto& row : cells) {
        for (const double cell : row) {
            const auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(cell));
            for (int shift = 0; shift < 32; shift += 8) {
                bytes += static_cast<char>((bits >> shift) & 0xFFU);
            }
        }
    }
    return bytes;
}

std::string hdr(std::int64_t ncols, std::int64_t nrows, const GridOptions& options)
{
    return headerLines(ncols, nrows, options) + "byteorder LSBFIRST" + options.lineEnd;
}

std::string hdr(const Cells& cells, const GridOptions& options)
{
    return hdr(columnsOf(cells), static_cast<std::int64_t>(cells.size()), options);
}

WrittenGrid readWrittenAsc(std::string_view text)
{
    WrittenGrid grid = takeHeader(text);
    while (!text.empty()) {
        grid.cells.push_back(numbersOf(takeLine(text)));
        EXPECT_EQ(static_cast<std::int64_t>(grid.cells.back().size()), grid.ncols) << "in line " << grid.cells.size();
    }
    EXPECT_EQ(static_cast<std::int64_t>(grid.cells.size()), grid.nrows);
    return grid;
}

WrittenGrid readWrittenFlt(std::string_view header, std::string_view bytes)
{
    WrittenGrid grid = takeHeader(header);
    EXPECT_EQ(takeLine(header), "byteorder LSBFIRST");
    EXPECT_EQ(header, "") << "after the last line of the .hdr";
    if (static_cast<std::int64_t>(bytes.size()) != 4 * grid.ncols * grid.nrows) {
        ADD_FAILURE() << bytes.size() << " bytes for " << grid.nrows << " rows by " << grid.ncols << " columns";
        return grid;
    }
    std::size_t at = 0;
    for (std::int64_t row = 0; row < grid.nrows; ++row) {
        auto& values = grid.cells.emplace_back();
        for (std::int64_t column = 0; column < grid.ncols; ++column, at += 4) {
            std::uint32_t bits = 0;
            for (std::size_t k = 0; k < 4; ++k) {
                bits |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[at + k])) << (8 * k);
            }
            values.push_back(std::bit_cast<float>(bits));
        }
    }
    return grid;
}

std::string showCells(const Cells& cells)
{
    constexpr std::size_t kMostRows = 40;
    constexpr std::size_t kMostColumns = 25;

    std::string text;
    for (std::size_t row = 0; row < std::min(cells.size(), kMostRows); ++row) {
        text += "   ";
        for (std::size_t column = 0; column < std::min(cells[row].size(), kMostColumns); ++column) {
            std::string cell = shortest(cells[row][column]);
            cell.insert(0, cell.size() < 9 ? 9 - cell.size() : 1, ' ');
            text += cell;
        }
        text += cells[row].size() > kMostColumns ? " ...\n" : "\n";
    }
    return text + (cells.size() > kMostRows ? "    ...\n" : "");
}

} // namespace gridforge::test
