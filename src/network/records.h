// The records of the network builder: branches, sections, connectors and the network lines made of them. They grow with
// what is read. Vertices, layers, branches and sections count from 1 in comments, messages and the number fields here.
#pragma once

#include "plane/box.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::network {

inline constexpr std::int32_t kMaxSections = 10000;
inline constexpr std::int32_t kMaxBranches = 2000;
inline constexpr std::int32_t kMaxBranchSections = 10000; // on one branch
inline constexpr std::int32_t kMaxConnectors = 2000;
inline constexpr std::int32_t kMaxConnectorVertices = 100;
inline constexpr std::int32_t kMaxPolylineVertices = 10000; // of a branch or section, inserted ones included
inline constexpr std::int32_t kMaxFlcFiles = 2000;

inline constexpr std::int32_t kBranchNameWidth = 250;
inline constexpr std::int32_t kTypeWidth = 4;
inline constexpr std::int32_t kLineIdWidth = 12;
inline constexpr std::int32_t kSourceWidth = 250;
inline constexpr std::int32_t kSectionTypeWidth = 2;
inline constexpr std::int32_t kSectionFlagsWidth = 8;
inline constexpr std::int32_t kColumnWidth = 20;

// The extent of vertices; all 0 without vertices. A first one that is not-a-number is its side, later ones do not count.
Box extentOf(const std::vector<double>& x, const std::vector<double>& y);

// A place where a section cuts a branch.
struct BranchSection {
    bool snapped = false; // to a vertex; a crossing otherwise
    float chainage = 0;
    double x = 0;
    double y = 0;
    std::int32_t vertex = 0; // of the branch: the one snapped to, or the end of the segment that is crossed
};

struct NbcBranch {
    std::string name;
    float roughness = 0;
    char flag = ' '; // F or T
    float formLoss = 0;
    std::string type;
    std::int32_t layer = 0;
    Box extent;
    std::vector<double> x;
    std::vector<double> y;
    std::vector<float> chainage; // at each vertex, the first 0
    std::vector<BranchSection> sections;

    std::int32_t vertices() const { return static_cast<std::int32_t>(x.size()); }
};

struct NbcBranches {
    std::vector<NbcBranch> all;
    std::vector<std::string> layerNames;
    std::int32_t mostVertices = -1;       // of any branch
    std::int32_t branchesAndSections = 0; // branches and the sections on them, once they are matched
};

// The cells that give a point of a section its elevation, and how they do it.
enum class SectionCells { atPoint, across, around };
enum class Extraction { maximum, minimum, average };

// From the words of a section layer, of which the first that is in the text counts; any other text is the plain way.
SectionCells sectionCellsFrom(std::string_view bufferMethod);
Extraction extractionFrom(std::string_view extractionMethod);

// A cross-section: its line, how it is sampled, and where it meets a branch.
struct NbcSection {
    std::string source; // name of the section's CSV file
    std::string type;
    std::string flags;
    std::string column[6];
    float distance = 0; // between sample points; below 0: the vertices as they are
    float zMaximum = 0;
    bool split = true;
    bool extract = true;
    Extraction extraction = Extraction::average;
    SectionCells cells = SectionCells::atPoint;
    float bufferDistance = 0;
    std::int32_t layer = 0;
    Box extent;
    std::vector<double> x; // as digitised
    std::vector<double> y;

    std::vector<double> pointX;
    std::vector<double> pointY;
    std::vector<float> pointZ;
    std::vector<float> pointMaterial;

    bool snapped = false; // to a vertex of a branch
    bool intersected = false;
    std::string branchName;
    float chainage = 0;
    double meetingX = 0;
    double meetingY = 0;
    std::int32_t branch = 0;
    std::int32_t branchVertex = 0;
    std::int32_t sectionVertex = 0;

    std::int32_t vertices() const { return static_cast<std::int32_t>(x.size()); }
    std::int32_t points() const { return static_cast<std::int32_t>(pointX.size()); }
};

struct NbcSections {
    std::vector<NbcSection> all;
    std::vector<std::string> layerNames;
    std::vector<std::string> csvFolders; // of each layer, with their last separator
};

struct NbcConnector {
    std::int32_t layer = 0;
    std::vector<double> x;
    std::vector<double> y;
};

using NbcConnectors = std::vector<NbcConnector>;

// A line of the 1d_nwk layer.
struct NbcLine {
    std::string id;
    std::string type;
    char ignore = 'F';
    char ucs = ' ';
    float n = 0;
    float upstreamInvert = -99999.0F;
    float downstreamInvert = -99999.0F;
    float formLoss = 0;
    float blockage = 0;
    std::string inletType;
    std::string connection;
    std::int32_t connectionNumber = 0;
    float width = 0;
    float height = 0;
    std::int32_t number = 0;
    float heightContraction = 0;
    float widthContraction = 0;
    float entryLoss = 0;
    float exitLoss = 0;
    std::int32_t layer = 0; // of branches
    std::vector<double> x;
    std::vector<double> y;
};

using NbcLines = std::vector<NbcLine>;

} // namespace gridforge::network
