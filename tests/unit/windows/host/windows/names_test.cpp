#include "host/windows/names.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <utility>

namespace gridforge::test {
namespace {

TEST(Names, AreUtf8WhereTheyCanBe)
{
    struct Pair {
        std::string_view text;
        std::wstring_view wide;
    };
    for (const auto& [text, expected] :
         {Pair{"", L""}, Pair{"a", L"a"}, Pair{"\x7f", L"\x7f"}, Pair{"\xc2\x80", L"\x80"}, Pair{"\xdf\xbf", L"\x7ff"},
          Pair{"\xe0\xa0\x80", L"\x800"}, Pair{"\xe2\x82\xac", L"\x20ac"}, Pair{"\xef\xbf\xbf", L"\xffff"},
          Pair{"\xf0\x90\x80\x80", L"\xd800\xdc00"}, Pair{"\xf0\x9f\x8c\x8a", L"\xd83c\xdf0a"},
          Pair{"\xf4\x8f\xbf\xbf", L"\xdbff\xdfff"}}) {
        EXPECT_EQ(wide(text), expected);
        EXPECT_EQ(narrow(expected), text);
    }
    EXPECT_EQ(narrow(std::wstring(1, L'\0')), std::string(1, '\0'));
    EXPECT_EQ(wide(std::string(1, '\0')), std::wstring(1, L'\0'));
}

TEST(Names, ThatAreNotUtf8AreWestern)
{
    EXPECT_EQ(wide("caf\xe9"), L"caf\xe9");
    EXPECT_EQ(wide("\x96"), L"\x2013");
    EXPECT_EQ(wide("\xc3\xa9 \xe9"), L"\xc3\xa9 \xe9") << "as a whole";
    EXPECT_EQ(wide("\xc3"), L"\xc3") << "cut short";
    EXPECT_EQ(wide("\xc0\xaf"), L"\xc0\xaf") << "not the shortest form";
    EXPECT_EQ(wide("\xe0\x9f\xbf").size(), 3U) << "not the shortest form";
    EXPECT_EQ(wide("\xf0\x8f\xbf\xbf").size(), 4U) << "not the shortest form";
    EXPECT_EQ(wide("\xf4\x90\x80\x80").size(), 4U) << "past the last character";
    EXPECT_EQ(wide("\xf8\x88\x80\x80\x80").size(), 5U) << "of no character";
    EXPECT_EQ(wide("\xff").size(), 1U);
}

TEST(Names, KeepHalvesOfPairsThatStandAlone)
{
    for (const std::wstring_view name : {L"a\xd800", L"\xdc00z", L"\xd800\xd800", L"\xdfff\xd800\xdc00\xd800"}) {
        EXPECT_EQ(wide(narrow(name)), name);
    }
}

TEST(SystemPath, IsTheNameWithTheSeparatorsOfTheSystem)
{
    for (const auto& [name, path] : {std::pair{"a.flt", L"a.flt"},
                                     {"d/a", L"d\\a"},
                                     {"../a", L"..\\a"},
                                     {"./d/", L".\\d\\"},
                                     {"C:/d/a.b.flt", L"C:\\d\\a.b.flt"},
                                     {"C:a", L"C:a"},
                                     {"C:", L"C:"},
                                     {"C:.", L"C:."},
                                     {"//server/share/a", L"\\\\server\\share\\a"},
                                     {".a", L".a"},
                                     {" a", L" a"}}) {
        EXPECT_EQ(systemPath(name), path);
    }
}

TEST(SystemPath, OfALongNameIsInFull)
{
    const std::string part(100, 'n');
    const std::wstring wides(100, L'n');
    EXPECT_EQ(systemPath("C:/" + part + "/./" + part + "/x/../" + part),
              L"\\\\?\\C:\\" + wides + L"\\" + wides + L"\\" + wides);
    EXPECT_EQ(systemPath("//server/share/" + part + "/" + part + "/" + part),
              L"\\\\?\\UNC\\server\\share\\" + wides + L"\\" + wides + L"\\" + wides);
    EXPECT_EQ(fullPath("C:/" + part + "/" + part + "/" + part), L"\\\\?\\C:\\" + wides + L"\\" + wides + L"\\" + wides);
    EXPECT_EQ(fullPath("C:/d/../a"), L"C:\\a");
    EXPECT_TRUE(systemPath(part + "/" + part + "/" + part).starts_with(L"\\\\?\\"))
        << "not a name in the current folder";
    EXPECT_EQ(usualName(L"\\\\?\\C:\\a"), "C:\\a");
    EXPECT_EQ(usualName(L"\\\\?\\UNC\\server\\share\\a"), "\\\\server\\share\\a");
}

// Else the cells of "flood." would go over those of "flood", those of "nul.flt" nowhere, and "at 12:30.asc" would look empty.
TEST(SystemPath, IsOfNoFileWhereTheSystemWouldTakeAnother)
{
    const std::wstring none = systemPath("nul");
    EXPECT_EQ(none.find_first_of(L"<>\"|?*"), 0U) << "a name that the system refuses";
    for (const char* name :
         {"flood.", "flood. .", "flood ", "d./a", "d/a.", "C:/d/a.", "...", "d/.../a", "NUL", "con.asc", "d/Prn.flt",
          "com1", "lpt9.txt", "ab:c", "at 12:30.asc", "C:/d/a:b", "d:/a:b/c"}) {
        EXPECT_EQ(systemPath(name), none) << name;
    }
    for (const char* name : {"null", "console.asc", "com", "comma.flt", "d.1/a"}) {
        EXPECT_NE(systemPath(name), none) << name;
    }
}

TEST(SystemPath, OfWhatTheUserGivesInAFormOfTheSystemIsThat)
{
    EXPECT_EQ(systemPath("//?/C:/d/a."), L"\\\\?\\C:\\d\\a.");
    EXPECT_EQ(systemPath("//./NUL"), L"\\\\.\\NUL");
}

} // namespace
} // namespace gridforge::test
