// Output of .mif and .mid files.
#pragma once

#include "gis/feature.h"
#include "gis/layer_spec.h"
#include "host/units.h"

#include <string_view>

namespace gridforge::gis::mif {

struct MifOutput {
    Unit mifUnit = 0;
    Unit midUnit = 0;
};

// Creates <base>.mif with its header, and <base>.mid. The name is the base or has either extension.
MifOutput create(std::string_view fileName, const LayerSpec& spec);
void writeObject(const MifOutput& output, const Feature& feature);
void writeRecord(const MifOutput& output, const Feature& feature);
void closeFiles(MifOutput& output);

} // namespace gridforge::gis::mif
