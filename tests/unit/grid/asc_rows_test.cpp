#include "grid/asc_rows.h"

#include "host/console.h"
#include "host/units.h"
#include "support/child_run.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace gridforge {
namespace {

using test::runInChild;
using test::ScratchFolder;

// Rows of `columns` cells of `text` as a file, up to `most` of them, told as their sums; then "refused", where a row was.
std::string rowSums(const std::string& text, std::size_t columns, int most)
{
    ScratchFolder folder;
    folder.give("cells.txt", text);
    const test::ChildRun run = runInChild(folder, [&] {
        Unit unit = 0;
        OPENER(unit, "I ", "cells.txt");
        for (int i = 0; i < most; ++i) {
            std::vector<float> row(columns);
            if (!grid::readAscRow(unit, row)) {
                say("refused");
                break;
            }
            double sum = 0;
            for (const float cell : row) {
                sum += static_cast<double>(cell);
            }
            say(static_cast<std::int64_t>(sum));
        }
    });
    const std::string opened = "Opened File Unit:1001\n";
    const std::size_t at = run.console.find(opened);
    return at == std::string::npos ? run.console : run.console.substr(at + opened.size());
}

TEST(AscRows, ReadsRowsUpToTheEndOfTheFile)
{
    EXPECT_EQ(rowSums("1 2 3\r\n4 5\n6 rest\n7 8 9", 3, 9), "6\n15\n24\nrefused\n");
}

TEST(AscRows, EmptyFileIsRefused)
{
    EXPECT_EQ(rowSums("", 1, 1), "refused\n");
}

TEST(AscRows, ValuesAcrossTheEndsOfTheBuffer)
{
    // 7 bytes a value and 2 a line end shift the cut of the buffer through the values.
    constexpr std::size_t kColumns = 50001;
    std::string text;
    std::string sums;
    for (int row = 0; row < 12; ++row) {
        for (std::size_t i = 0; i < kColumns; ++i) {
            text += "  " + std::to_string(10001 + row);
        }
        text += "\r\n";
        sums += std::to_string(static_cast<std::int64_t>(kColumns) * (10001 + row)) + "\n";
    }
    EXPECT_EQ(rowSums(text, kColumns, 12), sums);
}

TEST(AscRows, DroppedRestMayBeLongerThanTheBuffer)
{
    EXPECT_EQ(rowSums("1 2 " + std::string(3 * kReadAhead, '9') + "\n3 4\n", 2, 2), "3\n7\n");
}

TEST(AscRows, BlanksMayBeLongerThanTheBuffer)
{
    EXPECT_EQ(rowSums("1" + std::string(3 * kReadAhead, ' ') + "2\n", 2, 1), "3\n");
}

TEST(AscRows, ValueLongerThanTheBufferIsRefused)
{
    EXPECT_EQ(rowSums("1 0." + std::string(2 * kReadAhead, '0') + "\n", 2, 1), "refused\n");
}

TEST(AscRows, ForeignTextIsRefused)
{
    EXPECT_EQ(rowSums("1 2\n3 x\n5 6\n", 2, 3), "3\nrefused\n");
}

} // namespace
} // namespace gridforge
