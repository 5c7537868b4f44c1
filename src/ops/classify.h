// -classify: each cell becomes the number of the class it falls in.
#pragma once

#include "run/common.h"
#include "run/inputs.h"

#include <string>

namespace gridforge::ops {

struct ClassifyOptions {
    std::string classFile;
    bool rgb = false; // the class file has colours
    bool grc = false; // writes a grid of classes

    friend bool operator==(const ClassifyOptions&, const ClassifyOptions&) = default;
};

void runClassify(const run::Common& common, const ClassifyOptions& options, const run::InputFileList& inputs);

} // namespace gridforge::ops
