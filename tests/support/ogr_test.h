// The bases of tests with OGR as a witness.
#pragma once

#include "support/ogr.h"
#include "support/scratch_folder.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace gridforge::test {

// Skipped where OGR is not installed.
template <typename Base = testing::Test>
class OgrWitness : public Base {
protected:
    void SetUp() override
    {
        if (!haveOgr()) {
            GTEST_SKIP() << "no OGR (Debian: gdal-bin)";
        }
    }
};

// The same with a scratch folder for layers.
template <typename Base = testing::Test>
class OgrTest : public OgrWitness<Base> {
protected:
    std::string at(std::string_view name) const { return (folder.path() / name).string(); }

    // Lets OGR make the layer `name`, .mif or .shp, of a table: a heading with the column WKT for the geometry, and rows.
    void ogrWrites(const std::string& name, const std::string& table, const std::string& options = "")
    {
        folder.give("in.csv", table);
        const std::string driver =
            name.ends_with(".mif") ? "-f 'MapInfo File' -dsco FORMAT=MIF" : "-f 'ESRI Shapefile' -a_srs EPSG:28355";
        ASSERT_TRUE(ogrConvert(driver +
                               " -oo AUTODETECT_TYPE=YES -oo GEOM_POSSIBLE_NAMES=WKT -oo KEEP_GEOM_COLUMNS=NO " +
                               options + " '" + at(name) + "' '" + at("in.csv") + "'"));
    }

    ScratchFolder folder;
};

} // namespace gridforge::test
