// The records of the layer library: one object, its coordinates, an open layer with its files in either family, and
// what a writer fills before it writes. Vertices, parts, fields and file sets count from 1 in comments and messages:
// vertex 1 is x[0].
#pragma once

#include "host/units.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge {

inline constexpr std::int32_t kMaxLayers = 100;
inline constexpr std::int32_t kMaxTrackedLayers = 1000;
inline constexpr std::int32_t kMaxAttributes = 256; // columns of a .mif
inline constexpr std::int32_t kMaxDbfFields = 128;  // fields of a .dbf
inline constexpr std::int32_t kMaxParts = 10000;    // rings of a region, parts of a polyline
inline constexpr std::int32_t kMaxWriteVertices = 100000;
inline constexpr std::size_t kDataLineWidth = 1000;
inline constexpr std::size_t kLargeDataLineWidth = 100000;
inline constexpr std::size_t kAttributeNameWidth = 32;
inline constexpr std::size_t kAttributeTypeWidth = 24;
inline constexpr std::size_t kObjectNameWidth = 24;
inline constexpr std::size_t kStyleWidth = 256;
inline constexpr std::size_t kDbfNameWidth = 11;

inline constexpr std::int32_t kLayerNone = 0;
inline constexpr std::int32_t kLayerMif = 1; // also a bare .csv or .mid
inline constexpr std::int32_t kLayerShp = 2; // also a bare .dbf

// One object's kind and parts; its coordinates travel beside it. Exactly one kind is true after gisObjectType, but for
// center.
struct GisO {
    bool none = false;
    bool point = false;
    bool line = false;
    bool pline = false;
    bool plineMultiple = false;
    bool region = false;
    bool ellipse = false;
    bool rect = false;
    bool roundRect = false;
    bool arc = false;
    bool center = false;
    bool text = false;
    bool multipoint = false;

    bool haveCoordinates = false; // the coordinates have been read or written; clear() leaves it
    std::int32_t nSections =
        1;               // .mif: the count behind "Pline Multiple" or "MultiPoint"; .shp: parts of a polyline, points
    std::int32_t nr = 1; // rings of a region; polylines of a .shp: parts taken so far
    // ir[k-1] is part k. Regions as read: the number of the ring's last vertex. Polylines of a .shp as read: the
    // zero-based part starts and, behind them, the point count. For writing: the number of the part's first vertex.
    // Never empty; readers make it as long as they need.
    std::vector<std::int32_t> ir = {1};
    std::string name; // the kind as the file spells it, for messages

    // No kind, one section, one part from vertex 1, no name. `ir` keeps its length, so that nothing is allocated again.
    void clear();
};

// What gisReadObject gives: arrays that the caller keeps from object to object and that only grow. They hold two slots
// at least, zero at first. A ring of a region takes one slot more than its vertices: the slot behind its closing vertex
// repeats its second vertex, and np counts that slot too.
struct GisCoordinates {
    std::int32_t np = 0;
    std::vector<double> x = std::vector<double>(2);
    std::vector<double> y = std::vector<double>(2);
    double xc = 0; // centre
    double yc = 0;
    float angle = 0; // degrees
    float length = 0;

    // Room for `count` vertices; what is there stays.
    void reserve(std::int32_t count);
};

// The MIF side of a layer.
struct MifLayer {
    std::string line; // last object line read
    std::string rest; // the text behind its keyword
    Unit mifUnit = 0;
    Unit midUnit = 0;
    std::string style1; // first style line written behind each object, as "    Symbol (37,255,12)"; stays until changed
    std::string style2; // second one; goes out only behind the first
    std::string lastObject; // keyword of the object last written
    std::int32_t nAttributes = 0;
    std::vector<std::string> attributeName;
    std::vector<std::string> attributeType; // as `Float` or `Char(12)`
};

// One set of shape files. An input layer uses the first of a layer's three sets, whatever its type; an output layer has
// points in set 1, lines in 2, regions in 3. The units come in pairs on one file, since the console counts them so; the
// big-endian one of a pair need not be read or written, as every field is put in its byte order by hand.
struct ShpFile {
    Unit shpUnit = 0;
    Unit shpUnitBE = 0;
    Unit shxUnit = 0;
    Unit shxUnitBE = 0;
    Unit prjUnit = 0;
    std::int32_t fileCode = 0;
    std::int32_t fileLength = 0; // in 16-bit words
    std::int32_t version = 0;
    std::int32_t shapeType = 0; // 1, 3 or 5 on output
    std::int32_t recordShapeType = 0;
    std::int32_t nRecords = 0;
    std::int32_t shxOffset = 0; // of the next record, in 16-bit words
    double xmin = 0;
    double ymin = 0;
    double xmax = -1.0;
    double ymax = -1.0;
};

// The attribute table beside a set of shape files.
struct DbfTable {
    Unit dbfUnit = 0;
    std::int32_t nRecords = 0;
    std::int32_t currentRecord = 0;
    std::int32_t nFields = 0;
    std::int32_t recordLength = 0; // without the deletion byte
    std::array<std::int32_t, kMaxDbfFields> fieldLength{};
    std::array<std::int32_t, kMaxDbfFields> fieldDecimals{};
    std::array<std::string, kMaxDbfFields> fieldName;
    std::array<char, kMaxDbfFields> fieldType{};
};

// A slot of the layer table.
struct Layer {
    std::string layerName;
    std::int32_t layerFormat = kLayerNone;
    std::int32_t layerTrackId = 0;
    bool layerOpen = false;
    bool layerEnd = false; // nothing is left to read; true after close
    bool layerOutput = false;
    MifLayer mifLayer;
    std::array<ShpFile, 3> shpFiles;
    std::array<DbfTable, 3> dbfTable;
};

struct GisOutputAttribute {
    std::string name; // cut at 32
    std::string type; // "Char", "Float", "Integer", "Decimal", "Logical"; cut at 24
    std::int32_t length = 0;
};

// The columns of the layer whose header is written next.
struct GisOutputAttributes {
    std::vector<GisOutputAttribute> columns;
    std::int32_t nRecords = 0; // for the .dbf header; callers leave it 0

    std::int32_t count() const { return static_cast<std::int32_t>(columns.size()); }
    void clear();
    // One more column; the 257th ends the run.
    void add(std::string_view name, std::string_view type, std::int32_t length = 0);
};

// The vertices of the object that is written next. Regions need their closing vertex.
struct GisOutputCoordinates {
    std::int32_t np = 0;
    std::vector<double> x = std::vector<double>(3); // a line and a text take their places whatever np says
    std::vector<double> y = std::vector<double>(3);

    void clear() { np = 0; }
    // One more vertex; above 100000 the run ends.
    void add(double px, double py);
};

} // namespace gridforge
