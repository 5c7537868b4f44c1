// GDAL/OGR as an outside witness of layers, through its command-line tools.
#pragma once

#include <string>
#include <vector>

namespace gridforge::test {

// True where the tools are installed.
bool haveOgr();

// A feature as OGR shows it: the word of its geometry, as "POLYGON" ("" for none), all its coordinates in order, and the
// values of its attributes as text.
struct OgrFeature {
    std::string kind;
    std::vector<double> numbers;
    std::vector<std::string> values;
};

// The features of a layer file; a test failure where OGR cannot read it.
std::vector<OgrFeature> ogrFeatures(const std::string& fileName);

// The attributes of a layer file as OGR lists them: "Name: String (20.0)".
std::vector<std::string> ogrFields(const std::string& fileName);

// Runs `ogr2ogr <arguments>`; false where it fails.
bool ogrConvert(const std::string& arguments);

} // namespace gridforge::test
