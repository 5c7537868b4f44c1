#include "core/names.h"

#include <gtest/gtest.h>
#include <string>

namespace gridforge {
namespace {

const std::string kName = R"(C:\work\a_b.mif)";

TEST(Fileext, IsTheLowerCasedTailFromTheLastDot)
{
    EXPECT_EQ(FILEEXT("FILE.ASC"), ".asc");
    EXPECT_EQ(FILEEXT("a.b.Flt"), ".flt");
    EXPECT_EQ(FILEEXT("a"), "");
    EXPECT_EQ(FILEEXT(""), "");
    EXPECT_EQ(FILEEXT(".asc"), ".asc");
    EXPECT_EQ(FILEEXT("a."), ".");
    EXPECT_EQ(FILEEXT("a.asc  "), ".asc");
}

TEST(Fileext, PassesADotInAFolder)
{
    EXPECT_EQ(FILEEXT(R"(a.b\c)"), "");
    EXPECT_EQ(FILEEXT("a.b/c"), "");
    EXPECT_EQ(FILEEXT(R"(..\c)"), "");
    EXPECT_EQ(FILEEXT(R"(a.b\c.asc)"), ".asc");
    EXPECT_EQ(FILEEXT(R"(a\.asc)"), ".asc");
}

TEST(Filenamepath, IsTheNameWithoutExtension)
{
    EXPECT_EQ(FILENAMEPATH(kName), R"(C:\work\a_b)");
    EXPECT_EQ(FILENAMEPATH("a.b.asc"), "a.b");
    EXPECT_EQ(FILENAMEPATH("a."), "a");
    EXPECT_EQ(FILENAMEPATH(R"(a\.asc)"), R"(a\)");
}

TEST(Filenamepath, CopiesANameWithoutExtension)
{
    EXPECT_EQ(FILENAMEPATH("abc"), "abc");
    EXPECT_EQ(FILENAMEPATH(R"(a.b\c)"), R"(a.b\c)");
    EXPECT_EQ(FILENAMEPATH("a.b/c"), "a.b/c");
    EXPECT_EQ(FILENAMEPATH(".asc"), ".asc") << "the dot stands at the head";
}

TEST(Filename, IsTheStemBehindTheFolder)
{
    EXPECT_EQ(FILENAME(kName), "a_b");
    EXPECT_EQ(FILENAME("x/y\\z.asc"), "z");
    EXPECT_EQ(FILENAME("x\\y/z.asc"), "z");
    EXPECT_EQ(FILENAME("a.b/z"), "z");
    EXPECT_EQ(FILENAME("x/z.b.asc"), "z.b");
    EXPECT_EQ(FILENAME("x/"), "");
}

TEST(Filename, ADotRightBehindTheSeparatorBeginsNoExtension)
{
    EXPECT_EQ(FILENAME(R"(x\.asc)"), ".asc");
    EXPECT_EQ(FILENAME(R"(x\a.sc)"), "a");
}

TEST(Filename, WithoutFolder)
{
    EXPECT_EQ(FILENAME("a.asc"), "a");
    EXPECT_EQ(FILENAME("abc"), "abc");
    EXPECT_EQ(FILENAME(".asc"), "");
    EXPECT_EQ(FILENAME(""), "");
}

TEST(Filenameext, IsTheNameBehindTheFolder)
{
    EXPECT_EQ(FILENAMEEXT(kName), "a_b.mif");
    EXPECT_EQ(FILENAMEEXT("x/.asc"), ".asc");
    EXPECT_EQ(FILENAMEEXT("a.asc"), "a.asc");
    EXPECT_EQ(FILENAMEEXT("x/"), "");
}

TEST(Filefolderpath, EndsInItsSeparator)
{
    EXPECT_EQ(FILEFOLDERPATH(kName), R"(C:\work\)");
    EXPECT_EQ(FILEFOLDERPATH("x/y/a.asc"), "x/y/");
    EXPECT_EQ(FILEFOLDERPATH(R"(x/y\a.asc)"), R"(x/y\)");
    EXPECT_EQ(FILEFOLDERPATH("name.asc"), "");
    EXPECT_EQ(FILEFOLDERPATH(""), "");
}

TEST(Names, HoldAThousandCharacters)
{
    const std::string longName = std::string(998, 'a') + ".asc";
    EXPECT_EQ(FILEEXT(longName), ".a");
    EXPECT_EQ(FILENAMEEXT(longName).size(), 1000U);
}

TEST(Cleanpath, TakesDoubledSeparatorsTogether)
{
    EXPECT_EQ(CLEANPATH(R"(a\\b)"), R"(a\b)");
    EXPECT_EQ(CLEANPATH("a//b///c"), "a/b/c");
    EXPECT_EQ(CLEANPATH(R"(  a\\\b//c)"), R"(a\b/c)");
    EXPECT_EQ(CLEANPATH(R"(a\/b)"), R"(a\/b)") << "a mixed pair is none";
    EXPECT_EQ(CLEANPATH(""), "");
}

TEST(Cleanpath, KeepsALeadingPairAndAllOfItsKindBehind)
{
    EXPECT_EQ(CLEANPATH(R"(\\srv\\a)"), R"(\\srv\\a)");
    EXPECT_EQ(CLEANPATH("//srv//a"), "//srv//a");
    EXPECT_EQ(CLEANPATH(R"(\\srv//a\\b)"), R"(\\srv/a\\b)") << "the later first pair is of the other kind";
    EXPECT_EQ(CLEANPATH(R"(\\)"), R"(\\)");
}

} // namespace
} // namespace gridforge
