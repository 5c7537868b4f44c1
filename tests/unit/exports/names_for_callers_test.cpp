#include "exports/names_for_callers.h"

#include <gtest/gtest.h>
#include <string>

namespace gridforge::exports {
namespace {

const std::string kName = R"(C:\work\a_b.mif)";

TEST(Fileextkc, KeepsTheCase)
{
    EXPECT_EQ(FILEEXTKC("FILE.Asc"), ".Asc");
    EXPECT_EQ(FILEEXTKC("A.B/C"), "");
}

TEST(FileUnderscoreExt, IsTheTailFromTheLastUnderscore)
{
    EXPECT_EQ(FILE___EXT("a_b.mif"), "_b");
    EXPECT_EQ(FILE___EXT("Nwk_One_P.mif"), "_p");
    EXPECT_EQ(FILE___EXT("ab.mif"), "");
    EXPECT_EQ(FILE___EXT("_P"), "_p");
    EXPECT_EQ(FILE___EXT(""), "");
}

TEST(FileUnderscoreExt, AFolderLongerThanTheStemGivesBlank)
{
    EXPECT_EQ(FILE___EXT(kName), "") << "place 2 in the stem, the separator at 8 in the name";
    EXPECT_EQ(FILE___EXT(R"(x\abc_P.mif)"), "_p") << "4 against 2";
    EXPECT_EQ(FILE___EXT(R"(xyz\abc_P.mif)"), "") << "4 against 4";
    EXPECT_EQ(FILE___EXT(R"(xy\abc_P.mif)"), "_p") << "4 against 3";
}

TEST(FilenameNoUnderscore, CutsTheStemAtItsLastUnderscore)
{
    EXPECT_EQ(FILENAMENO_(kName), "a");
    EXPECT_EQ(FILENAMENO_("x_y/a_b_c.mif"), "a_b");
    EXPECT_EQ(FILENAMENO_("ab.mif"), "ab");
    EXPECT_EQ(FILENAMENO_("_b.mif"), "_b") << "the underscore must stand above 1";
}

TEST(FilenamepathNoUnderscore, CutsThePathAtAnUnderscoreOfTheFile)
{
    EXPECT_EQ(FILENAMEPATHNO_(kName), R"(C:\work\a)");
    EXPECT_EQ(FILENAMEPATHNO_(R"(x_y\ab.mif)"), R"(x_y\ab)");
    EXPECT_EQ(FILENAMEPATHNO_(R"(x\_b.mif)"), R"(x\)");
    EXPECT_EQ(FILENAMEPATHNO_("_b.mif"), "_b");
}

TEST(Addfolder, JoinsWithABackslash)
{
    EXPECT_EQ(ADDFOLDER(R"(C:\x)", "y.asc"), R"(C:\x\y.asc)");
    EXPECT_EQ(ADDFOLDER(R"(C:\x\)", "  y.asc"), R"(C:\x\y.asc)");
    EXPECT_EQ(ADDFOLDER("x/", "y.asc"), "x/y.asc");
    EXPECT_EQ(ADDFOLDER("x/z", "y.asc"), R"(x/z\y.asc)");
    EXPECT_EQ(ADDFOLDER("x  ", "y.asc"), R"(x\y.asc)");
}

TEST(Addfolder, OfABlankNameIsTheFolder)
{
    EXPECT_EQ(ADDFOLDER("", ""), ".");
    EXPECT_EQ(ADDFOLDER("  ", "  "), ".");
    EXPECT_EQ(ADDFOLDER(R"(  C:\x)", ""), R"(C:\x)");
}

TEST(Addfolder, OfABlankFolderIsTheName)
{
    EXPECT_EQ(ADDFOLDER("", "  y.asc"), "y.asc");
    EXPECT_EQ(ADDFOLDER("", R"(D:\y.asc)"), R"(D:\y.asc)");
}

TEST(Addfolder, KeepsAnAbsoluteName)
{
    EXPECT_EQ(ADDFOLDER(R"(C:\x\)", R"(D:\y.asc)"), R"(D:\y.asc)");
    EXPECT_EQ(ADDFOLDER(R"(C:\x)", R"( \\srv\y.asc)"), R"(\\srv\y.asc)");
}

TEST(Addfolder, ResolvesStepsToParents)
{
    EXPECT_EQ(ADDFOLDER(R"(C:\x)", R"(..\y.asc)"), R"(C:\y.asc)");
    EXPECT_EQ(ADDFOLDER(R"(C:\x\z\)", R"(..\..\y.asc)"), R"(C:\y.asc)");
    EXPECT_EQ(ADDFOLDER("x", R"(.\y.asc)"), R"(x\y.asc)");
    EXPECT_EQ(ADDFOLDER("", R"(x\..\y.asc)"), "y.asc");
    EXPECT_EQ(ADDFOLDER("x", "../y.asc"), R"(x\../y.asc)") << "steps with / are not seen";
}

TEST(Removedotdot, ResolvesParents)
{
    EXPECT_EQ(REMOVEDOTDOT(R"(a\b\..\c)"), R"(a\c)");
    EXPECT_EQ(REMOVEDOTDOT(R"(  a\b\d\..\..\c)"), R"(a\c)");
    EXPECT_EQ(REMOVEDOTDOT(R"(b\..\c)"), "c") << "no backslash before: all goes";
    EXPECT_EQ(REMOVEDOTDOT(R"(a\b\..\..\c)"), "c");
    EXPECT_EQ(REMOVEDOTDOT(R"(\\srv\a\..\c)"), R"(\\srv\c)");
}

TEST(Removedotdot, LeavesWhatCannotBeResolved)
{
    EXPECT_EQ(REMOVEDOTDOT(R"(..\..\a)"), R"(..\..\a)");
    EXPECT_EQ(REMOVEDOTDOT(R"(..\..\..\a)"), R"(..\..\..\a)");
    EXPECT_EQ(REMOVEDOTDOT(R"(..\..\a\..\b)"), R"(..\..\b)") << "a later step is resolved";
    EXPECT_EQ(REMOVEDOTDOT(R"(\..\a\..\b)"), R"(\..\a\..\b)") << "a step at the head ends the search";
    EXPECT_EQ(REMOVEDOTDOT(R"(a\..)"), R"(a\..)");
    EXPECT_EQ(REMOVEDOTDOT("a/b/../c"), "a/b/../c");
}

TEST(Removedotdot, TakesDoubledBackslashesTogether)
{
    EXPECT_EQ(REMOVEDOTDOT(R"(ab\\c\\\d)"), R"(ab\c\d)");
    EXPECT_EQ(REMOVEDOTDOT(R"(\\srv\\a)"), R"(\\srv\\a)") << "a leading pair keeps the later ones";
    EXPECT_EQ(REMOVEDOTDOT(R"(a\\b\\c)"), R"(a\\b\\c)") << "as does one at the second place";
}

TEST(Removedotdot, DropsStepsInPlace)
{
    EXPECT_EQ(REMOVEDOTDOT(R"(a\.\b)"), R"(a\b)");
    EXPECT_EQ(REMOVEDOTDOT(R"(a\.\.\b\.\c)"), R"(a\b\c)");
    EXPECT_EQ(REMOVEDOTDOT(R"(\.\b)"), R"(\b)");
    EXPECT_EQ(REMOVEDOTDOT(R"(.\b)"), R"(.\b)");
}

TEST(Driveandurlname, RewritesADrive)
{
    std::string name = R"(  c:\x)";
    EXPECT_FALSE(DRIVEANDURLNAME(name));
    EXPECT_EQ(name, R"(C Drive\x)");
}

TEST(Driveandurlname, RewritesAShare)
{
    std::string name = R"(\\srv\a)";
    EXPECT_FALSE(DRIVEANDURLNAME(name));
    EXPECT_EQ(name, R"(URL\srv\a)");
    name = "//srv/a";
    EXPECT_FALSE(DRIVEANDURLNAME(name));
    EXPECT_EQ(name, "URL\\srv/a");
}

TEST(Driveandurlname, LeavesALocalName)
{
    std::string name = R"(  x\y)";
    EXPECT_TRUE(DRIVEANDURLNAME(name));
    EXPECT_EQ(name, R"(x\y)");
    name = "";
    EXPECT_TRUE(DRIVEANDURLNAME(name));
    EXPECT_EQ(name, "");
}

TEST(Driveandurlname, ADriveBehindAShareHeadIsBoth)
{
    std::string name = R"(\\srv:x)";
    EXPECT_FALSE(DRIVEANDURLNAME(name));
    EXPECT_EQ(name, R"(URL\SRV Drivex)");
}

TEST(Addfolder, HoldsAThousandCharacters)
{
    EXPECT_EQ(ADDFOLDER("x", std::string(999, 'a')), "x\\" + std::string(998, 'a'));
}

} // namespace
} // namespace gridforge::exports
