#include "network/write_nwk.h"

#include "core/text.h"
#include "gis/layer_writer.h"
#include "host/console.h"
#include "network/layer_names.h"
#include "network/layer_output.h"
#include "plane/geometry.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace gridforge::network {

namespace {

constexpr std::string_view kChannelPen = "   Pen (2,59,255)";
constexpr std::string_view kConnectorPen = "   Pen (2,3,16711680) ";

std::vector<gis::Column> columnsOf(bool bendiness)
{
    std::vector<gis::Column> columns = {{"ID", "Char", kLineIdWidth},
                                        {"Type", "Char", kTypeWidth},
                                        {"Ignore", "Char", 1},
                                        {"UCS", "Char", 1},
                                        {"Len_or_ANA", "Float"},
                                        {"n_or_n_F", "Float"},
                                        {"US_Invert", "Float"},
                                        {"DS_Invert", "Float"},
                                        {"Form_Loss", "Float"},
                                        {"pBlockage", "Float"},
                                        {"Inlet_Type", "Char", kLineIdWidth},
                                        {"Conn_1D_2D", "Char", kTypeWidth},
                                        {"Conn_No", "Integer"},
                                        {"Width_or_Dia", "Float"},
                                        {"Height_or_WF", "Float"},
                                        {"Number_of", "Integer"},
                                        {"Height_Cont", "Float"},
                                        {"Width_Cont", "Float"},
                                        {"Entry_Loss", "Float"},
                                        {"Exit_Loss", "Float"}};
    if (bendiness) {
        columns.insert(columns.end(), {{"Actual_Len", "Float"}, {"Min_Len", "Float"}, {"Sinuosity_Index", "Float"}});
    }
    return columns;
}

std::string number(float value)
{
    return threeDecimals(static_cast<double>(value));
}

std::string letter(char value)
{
    return quotedValue(trim({&value, 1}));
}

// A closed line is divided by 0, on purpose: its index shows as Infinity.
std::string bendinessOf(const NbcLine& line)
{
    float actual = 0;
    for (std::size_t i = 1; i < line.x.size(); ++i) {
        actual += DISTANCE_8(line.x[i - 1], line.y[i - 1], line.x[i], line.y[i]);
    }
    const float least =
        line.x.empty() ? 0.0F : DISTANCE_8(line.x.back(), line.y.back(), line.x.front(), line.y.front());
    return join(",", number(actual), ",", number(least), ",", number(actual / least));
}

std::string recordOf(const NbcLine& line, bool bendiness)
{
    constexpr float kLength = 0;
    return join(quotedValue(line.id), ",", quotedValue(line.type), ",", letter(line.ignore), ",", letter(line.ucs), ",",
                number(kLength), ",", number(line.n), ",", number(line.upstreamInvert), ",",
                number(line.downstreamInvert), ",", number(line.formLoss), ",", number(line.blockage), ",",
                quotedValue(line.inletType), ",", quotedValue(line.connection), ",", line.connectionNumber, ",",
                number(line.width), ",", number(line.height), ",", line.number, ",", number(line.heightContraction),
                ",", number(line.widthContraction), ",", number(line.entryLoss), ",", number(line.exitLoss),
                bendiness ? bendinessOf(line) : "");
}

// Types other than S and X keep the pen of the line before them.
void takePen(const NbcLine& line, gis::Style& style)
{
    if (line.type == "S") {
        style.first = kChannelPen;
    } else if (line.type == "X") {
        style.first = kConnectorPen;
    }
}

// The lines that `belongs` picks.
template <typename Belongs>
void writeLayer(const NbcLines& lines, const std::string& name, const gis::Projection& projection, bool bendiness,
                Belongs belongs)
{
    gis::LayerWriter layer =
        gis::createLayer(name, {.columns = columnsOf(bendiness), .projection = projection, .families = "L"});
    gis::Feature feature{.kind = gis::Kind::polyline};
    for (const NbcLine& line : lines) {
        if (belongs(line)) {
            feature.x = line.x;
            feature.y = line.y;
            feature.record = recordOf(line, bendiness);
            takePen(line, feature.style);
            layer.write(feature);
        }
    }
    layer.close();
}

} // namespace

void nbc_write_nwk_single(const NbcLines& lines, const std::string& name, const gis::Projection& projection)
{
    say("Writing 1d_nwk file.");
    writeLayer(lines, name, projection, false, [](const NbcLine&) { return true; });
    say("Finished writing 1d_nwk file.");
}

void nbc_write_nwk(NbcLines& lines, const NbcBranches& branches, const gis::Projection& projection, bool bendiness,
                   const std::string& outputName)
{
    auto layers = static_cast<std::int32_t>(branches.layerNames.size());
    if (!outputName.empty()) {
        say("Using user-specfied output file: ", outputName);
        for (NbcLine& line : lines) {
            line.layer = 1;
        }
        layers = 1;
    }
    say("Writing ", layers, " 1d_nwk files.");
    for (std::int32_t k = 1; k <= layers; ++k) {
        const std::string name =
            outputName.empty() ? nwkLayerName(branches.layerNames[static_cast<std::size_t>(k - 1)]) : outputName;
        writeLayer(lines, name, projection, bendiness, [k](const NbcLine& line) { return line.layer == k; });
    }
    say("Finished writing 1d_nwk file.");
}

} // namespace gridforge::network
