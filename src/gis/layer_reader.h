// Input layers: opened, then read object by object, then closed. A bad file ends the run with a message.
//
//     LayerReader layer = openLayer(name);
//     while (LayerObject* object = layer.next()) {
//         layer.readCoordinates(*object, coordinates); // for the objects that are wanted
//     }
//     layer.close();
#pragma once

#include "gis/layer_object.h"
#include "gis/layer_spec.h"
#include "gis/open_layer.h"
#include "gis/projection.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::gis {

inline constexpr std::int32_t kMaxReadVertices = 1000000; // of a line or region, where an operation sets no limit

class LayerReader {
public:
    explicit LayerReader(OpenLayer& layer) : layer_(&layer) {}
    LayerReader(LayerReader&&) = default;
    LayerReader& operator=(LayerReader&&) = default;
    LayerReader(const LayerReader&) = delete;
    LayerReader& operator=(const LayerReader&) = delete;
    ~LayerReader() = default;

    // The next object with its record, null at the end of the layer. It is valid until the next call.
    LayerObject* next();
    // The object's coordinates and what is derived from them: the centre, and for lines angle and length. More than
    // `maxVertices` vertices end the run. Values that a kind does not have stay as they were, but angle and length become 0.
    void readCoordinates(LayerObject& object, Coordinates& coordinates, std::int32_t maxVertices = kMaxReadVertices);

    std::int32_t columnCount() const;
    // The columns in the form that an output layer needs.
    std::vector<Column> columns() const;
    // Closes the files. The console shows it, so it has its place in the run.
    void close();

private:
    OpenLayer* layer_;
    LayerObject object_;
};

// Opens a layer of the family that the extension names, and reads its header.
LayerReader openLayer(std::string_view fileName);

struct ProjectedLayer {
    Projection projection; // for the outputs
    LayerReader layer;
};
// Takes the projection of the layer first.
ProjectedLayer openWithProjection(std::string_view fileName);

// --- The steps of reading, for callers that take them one by one -----------------------------------------------------

// Opens the files without reading them.
OpenLayer& openFiles(std::string_view fileName);
void readHeader(OpenLayer& layer);
std::int32_t columnCount(const OpenLayer& layer);
// The number of lines of the .mid, which is rewound, or of records by the header of the .dbf.
std::int32_t recordCount(OpenLayer& layer);
// Back to the first object.
void rewind(OpenLayer& layer);
// .mif only: goes back to the column definitions and reads their count. False, with a warning and a pause, if it cannot be
// found.
bool goToColumns(OpenLayer& layer, std::int32_t& count);
// .mif only: reads the next column definition, its name cut at 256 and its type at 24.
Column readColumn(OpenLayer& layer);
// Clears `object` and reads the kind of the next one; false at the end of the layer. This and the next two set `end`.
bool readKind(OpenLayer& layer, LayerObject& object);
// The attributes of the object of this name as one line, cut at `width`.
void readRecord(OpenLayer& layer, std::string_view name, std::string& line, std::size_t width = kRecordWidth);
// As LayerReader reads them; if they are not `wanted`, all but the first vertex of a .mif are skipped.
void readCoordinates(OpenLayer& layer, LayerObject& object, Coordinates& coordinates, std::int32_t maxVertices,
                     bool wanted = true);
// Closes the files and removes the layer from the table.
void close(OpenLayer& layer);

} // namespace gridforge::gis
