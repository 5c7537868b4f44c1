// What the flags set: the options that do not depend on the operation, and those of each operation.
#pragma once

#include "netcdf/nc.h"
#include "network/xs.h"
#include "ops/classify.h"
#include "ops/count.h"
#include "ops/cutoff.h"
#include "ops/dif.h"
#include "ops/histogram.h"
#include "ops/max_min.h"
#include "ops/resize.h"
#include "ops/stat.h"
#include "ops/transform.h"
#include "ops/trim.h"
#include "remap/remap.h"
#include "run/common.h"
#include "sampling/brkline.h"
#include "sampling/cp.h"
#include "sampling/lp.h"
#include "sampling/na.h"

#include <tuple>

namespace gridforge::driver {

// -asc and -flt, until the validation settles which of them counts.
struct WantedFormats {
    bool asc = false;
    bool flt = false;

    friend bool operator==(const WantedFormats&, const WantedFormats&) = default;
};

// Each record is found by its type: by a row of the flag table from the option that the row names, and for an operation from
// the parameters of its run.
using Settings = std::tuple<run::Common, WantedFormats, netcdf::NcOptions, network::XsOptions, ops::ClassifyOptions,
                            ops::CountOptions, ops::CutoffOptions, ops::DifOptions, ops::HistogramOptions,
                            ops::MaxMinOptions, ops::ResizeOptions, ops::StatOptions, ops::TransformOptions,
                            remap::RemapOptions, sampling::BrklineOptions, sampling::CpOptions, sampling::LpOptions,
                            sampling::NaOptions, ops::TrimOptions>;

} // namespace gridforge::driver
