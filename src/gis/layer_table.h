// The table from the IDs that the console shows, 1 to 100, to the open layers of a run, and the list of its input layers.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace gridforge::gis {

struct OpenLayer;

inline constexpr std::int32_t kMaxLayers = 100;

// Empties the table, the list of input layers and the lines of messages; once, at the start of a run.
void initialise();

// The lowest unused ID, 0 if all are in use. It stays unused until one of the next two takes it.
std::int32_t findFreeId();
// Takes the ID for an output layer, which its writer keeps, or for an input layer, which the table keeps.
void takeId(std::int32_t id);
OpenLayer& takeId(std::int32_t id, std::unique_ptr<OpenLayer> layer);
void releaseId(std::int32_t id);

// The open input layer of the ID, or null.
OpenLayer* inputLayer(std::int32_t id);

// Lists an input layer if it is new to the run. Users see only the limit of the list: a warning for each new layer from
// number 1000 on.
void trackLayer(std::string_view fileName);

} // namespace gridforge::gis
