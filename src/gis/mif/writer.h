// Output of .mif and .mid files.
#pragma once

#include "gis/feature.h"
#include "gis/layer_spec.h"
#include "host/units.h"

#include <string_view>

namespace gridforge::gis::mif {

struct Output {
    Unit mifUnit = 0;
    Unit midUnit = 0;
};

// Creates <base>.mif with its header, and <base>.mid. A name without either extension is the base.
Output create(std::string_view fileName, const LayerSpec& spec);
void writeObject(const Output& output, const Feature& feature);
void writeRecord(const Output& output, const Feature& feature);
void closeFiles(Output& output);

} // namespace gridforge::gis::mif
