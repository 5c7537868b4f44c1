// The one record of settings, filled by the flag scan and read by every operation.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace gridforge::run {

enum class ResizeMethod { average, maximum, minimum };

inline constexpr std::int32_t kInterpolateIdw = 2;
inline constexpr std::int32_t kInterpolateTin = 3;

// Text values are cut at 1000 characters and have no trailing blanks; a blank name means none was given.
struct RunSettings {
    // Operation flags
    bool max = false;
    bool min = false;
    bool dif = false;
    bool cd = false;
    bool trans = false;
    bool resize = false;
    bool brkline = false;
    bool classify = false;
    bool count = false;
    bool fe = false;
    bool xyz = false;
    bool fuzzy = false;
    bool conv = false;
    bool multiply = false;
    bool histogram = false;
    bool xs = false;
    bool nbc = false;
    bool remap = false;
    bool na = false;
    bool lp = false;
    bool cp = false;
    bool trim = false;
    bool nc = false;
    bool damages = false;
    bool rf = false;
    bool stat = false;

    // Secondary options
    bool src = false; // suppress the source grid
    bool rgb = false;
    bool nowetdry = false;
    bool change = false;
    bool check = false;
    bool grc = false;
    bool cpmm = false;
    bool bufferGiven = false;   // -bd
    bool defaultNGiven = false; // -default_n
    bool batch = false;

    // Output name and format
    bool outputNameGiven = false;
    std::string outputName;
    bool formatSpecified = false;
    bool ascWanted = false;
    bool fltWanted = false;
    std::int32_t decimals = 3;

    // Values
    float transformM = 1.0F;
    float transformC = 0.0F;
    float cutoff = 0.0F;
    std::int32_t resizeFactor = 0;
    ResizeMethod resizeMethod = ResizeMethod::average;
    std::int32_t ncCompression = 1;
    bool ncShuffle = true;
    bool ncPart = false;
    float cpSearchDistance = 1000.0F;
    float cpMinMaxDistance = 100.0F;
    float lpDistance = 100.0F;
    std::int32_t interpolation = 0; // 0 until a flag sets kInterpolateTin or kInterpolateIdw
    std::int32_t idwPoints = 0;     // 0: the remap's default
    float freeboard = 0.0F;
    float bufferDistance = 0.0F;
    float defaultN = 0.0F;
    float pointToleranceX = 0.5F; // of the point file
    float pointToleranceY = 0.5F;

    // Statistics
    bool statAll = false;
    bool statMean = false;
    bool statMedian = false;
    bool statMin = false;
    bool statMax = false;
    bool statFrac = false;
    bool statRankAll = false;
    std::vector<std::int32_t> statRanks;

    // Names
    std::string classFile;
    std::string brklineLayer;
    std::string xsLayer;
    std::string naLayer;
    std::string trimLayer;
    std::string branchLayer;
    std::string cpLayer;
    std::string configFile;
    std::string lpLayer;
    std::string waterLevelGrid;
    std::string demGrid;
    std::string extentGrid;
    std::vector<std::string> materialGrids; // -mat

    friend bool operator==(const RunSettings&, const RunSettings&) = default;
};

} // namespace gridforge::run
