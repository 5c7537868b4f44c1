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

TEST(Fileextkc, KeepsTheCase)
{
    EXPECT_EQ(FILEEXTKC("FILE.Asc"), ".Asc");
    EXPECT_EQ(FILEEXTKC("A.B/C"), "");
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
    EXPECT_EQ(ADDFOLDER("x", std::string(999, 'a')), "x\\" + std::string(998, 'a'));
}

// --- ADDFOLDER -------------------------------------------------------------------------------------------------------

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

// --- REMOVEDOTDOT ----------------------------------------------------------------------------------------------------

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

// --- Heads of names --------------------------------------------------------------------------------------------------

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
