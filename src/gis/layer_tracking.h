// The list of input layers of a run, kept in memory and, where the start asks for it, in a workspace and a layer of its
// own.
#pragma once

#include <cstdint>
#include <string_view>

namespace gridforge {

// Opens what is not blank: <workspaceBase>.wor, <inputLayersBase>_input_layers.mif and .mid.
void startTracking(std::string_view simulationName, std::string_view workspaceBase, std::string_view inputLayersBase);
void endTracking();

// The number of the layer in the list, which takes it in when it is new; past the limit, a warning and the last number.
std::int32_t trackLayer(std::string_view fileName, std::int32_t gisID);

} // namespace gridforge
