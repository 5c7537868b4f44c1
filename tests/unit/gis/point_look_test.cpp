#include "gis/point_look.h"

#include "support/scratch_folder.h"
#include "support/shp_bytes.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace gridforge::test {
namespace {

using Places = std::vector<std::pair<double, double>>;

std::optional<Places> looked(const ScratchFolder& folder, const std::string& name)
{
    const auto found = gis::lookAtPoints((folder.path() / name).string());
    if (!found) {
        return std::nullopt;
    }
    Places places;
    for (const auto& [x, y] : *found) {
        places.emplace_back(x, y);
    }
    return places;
}

std::optional<Places> lookedAtMif(const std::string& objects)
{
    const ScratchFolder folder;
    folder.give("p.mif", "Version 300\nColumns 1\n  Name Char(10)\nData\n\n" + objects);
    return looked(folder, "p.mif");
}

TEST(LookAtPoints, FindsThoseOfAMifAmongItsObjects)
{
    EXPECT_EQ(lookedAtMif("Point 1.5 2\n    Symbol (35,0,12)\n  pOiNt\t3 -4e1\nLINE 7 8 9 10\nPOINT\n5,6\nNone\n"),
              (Places{{1.5, 2}, {3, -40}, {5, 6}}));
    EXPECT_EQ(lookedAtMif(""), Places());
}

TEST(LookAtPoints, LeavesWhatIsOddInAMifToItsReader)
{
    EXPECT_EQ(lookedAtMif("Point 1\n"), std::nullopt);
    EXPECT_EQ(lookedAtMif("Point x 2\n"), std::nullopt);
    EXPECT_EQ(lookedAtMif("Point ,2\n"), std::nullopt); // an empty value stands for that of the point before
    EXPECT_EQ(lookedAtMif("Point\n"), std::nullopt);
    const ScratchFolder folder;
    folder.give("p.mif", "Version 300\nPoint 1 2\n"); // no columns and no data
    EXPECT_EQ(looked(folder, "p.mif"), std::nullopt);
    EXPECT_EQ(looked(folder, "missing.mif"), std::nullopt);
}

TEST(LookAtPoints, FindsThoseOfAShapefile)
{
    const ScratchFolder folder;
    const std::string bytes = shpBytes(1, {pointRecord(1, 2), little(0), pointRecord(3, 4)});
    folder.give("p.shp", bytes);
    EXPECT_EQ(looked(folder, "p.shp"), (Places{{1, 2}, {3, 4}}));
    folder.give("p.shp", bytes.substr(0, bytes.size() - 1));
    EXPECT_EQ(looked(folder, "p.shp"), std::nullopt);
    folder.give("p.shp", bytes.substr(0, 99));
    EXPECT_EQ(looked(folder, "p.shp"), std::nullopt);
    folder.give("p.shp", shpBytes(3, {partsRecord(3, {0}, {1, 2, 3, 4})}));
    EXPECT_EQ(looked(folder, "p.shp"), std::nullopt);
}

} // namespace
} // namespace gridforge::test
