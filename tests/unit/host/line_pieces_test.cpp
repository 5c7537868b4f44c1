#include "host/line_pieces.h"

#include "host/threads.h"
#include "support/environment.h"
#include "support/scratch_folder.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace gridforge {
namespace {

using test::Environment;
using test::ScratchFolder;

constexpr std::size_t kLeastPiece = 4096; // bytes, whatever GRIDFORGE_PIECE says

// The pieces of a file with this text, without its first `from` bytes. Nothing where one could not be read.
std::optional<std::vector<std::string>> piecesOf(const std::string& text, std::size_t from = 0,
                                                 std::size_t lineBytes = 1)
{
    const Environment environment({{"GRIDFORGE_THREADS", "3"}, {"GRIDFORGE_PIECE", "1"}});
    const ScratchFolder folder;
    folder.give("t", text);
    LinePieces pieces((folder.path() / "t").string(), static_cast<std::int64_t>(from),
                      static_cast<std::int64_t>(text.size()), lineBytes);
    EXPECT_TRUE(pieces.takeRooms());
    std::vector<std::optional<std::string>> found(pieces.count());
    parallelFor(pieces.count(), [&](std::size_t piece, std::size_t worker) {
        if (const auto lines = pieces.read(piece, worker)) {
            found[piece] = std::string(*lines);
        }
    });
    std::vector<std::string> all;
    for (const auto& piece : found) {
        if (!piece) {
            return std::nullopt;
        }
        all.push_back(*piece);
    }
    return all;
}

std::string joinedUp(const std::vector<std::string>& pieces)
{
    std::string text;
    for (const std::string& piece : pieces) {
        text += piece;
    }
    return text;
}

TEST(LinePieces, ALineBelongsToThePieceThatItBeginsIn)
{
    const std::string first(kLeastPiece - 1, 'a'); // with its end it fills the first piece
    const std::string second(kLeastPiece, 'b');    // and this one reaches a byte into the third
    const auto pieces = piecesOf(first + '\n' + second + "\nc\n");
    ASSERT_TRUE(pieces);
    EXPECT_EQ(*pieces, (std::vector<std::string>{first + '\n', second + '\n', "c\n"}));

    const auto late = piecesOf(first + "a\n" + second + "\nc");
    ASSERT_TRUE(late);
    EXPECT_EQ(*late, (std::vector<std::string>{first + "a\n", second + '\n', "c"}))
        << "the second line begins with the second byte of its piece";

    const auto within = piecesOf(std::string(3 * kLeastPiece, 'a'));
    ASSERT_TRUE(within);
    EXPECT_EQ(*within, (std::vector<std::string>{std::string(3 * kLeastPiece, 'a'), "", ""}));
}

TEST(LinePieces, AreTheWholeTextInItsOrder)
{
    std::mt19937 random(7);
    for (const std::size_t longest : {2UL, 80UL, 5000UL, 40000UL}) {
        std::string text;
        while (text.size() < 200000) {
            text += std::string(random() % longest, 'x') + '\n';
        }
        for (const std::size_t cut : {0UL, 1UL, 2UL}) {
            const std::string shorter = text.substr(0, text.size() - cut);
            const auto pieces = piecesOf(shorter, 0, longest / 2);
            ASSERT_TRUE(pieces);
            EXPECT_TRUE(joinedUp(*pieces) == shorter)
                << "lines of up to " << longest << ", without " << cut << " bytes";
            std::size_t left = shorter.size();
            for (const std::string& piece : *pieces) {
                left -= piece.size();
                EXPECT_TRUE(piece.empty() || piece.back() == '\n' || left == 0);
            }
        }
        const auto rest = piecesOf(text, 1234, longest / 2);
        ASSERT_TRUE(rest);
        EXPECT_TRUE(joinedUp(*rest) == text.substr(1234)) << longest;
    }
}

TEST(LinePieces, OfNothingAreNone)
{
    EXPECT_EQ(piecesOf(""), std::vector<std::string>());
    EXPECT_EQ(piecesOf("header\n", 7), std::vector<std::string>());
}

TEST(LinePieces, ALineThatIsMuchLongerThanSaidIsRefused)
{
    constexpr std::size_t kReach = std::size_t{1} << 18; // what is read of a line past its piece at most
    EXPECT_TRUE(piecesOf(std::string(kReach, 'x') + "\n1\n"));
    EXPECT_FALSE(piecesOf(std::string(kReach + kLeastPiece + 1, 'x') + "\n1\n"));
}

TEST(LinePieces, OfAFileThatIsMissingFindNoRoom)
{
    LinePieces pieces("/nowhere/t", 0, 10, 1);
    EXPECT_FALSE(pieces.takeRooms());
}

TEST(LinePieces, AFileThatHasBecomeShorterIsRefused)
{
    const ScratchFolder folder;
    folder.give("t", "1\n2\n");
    LinePieces pieces((folder.path() / "t").string(), 0, 100, 1);
    ASSERT_TRUE(pieces.takeRooms());
    EXPECT_FALSE(pieces.read(0, 0));
}

} // namespace
} // namespace gridforge
