#include "network/write_nwk.h"

#include "core/text.h"
#include "gis/layers.h"
#include "host/console.h"
#include "network/layer_names.h"
#include "network/layer_output.h"
#include "plane/geometry.h"

#include <cstddef>
#include <string_view>

namespace gridforge {

namespace {

constexpr std::string_view kChannelPen = "   Pen (2,59,255)";
constexpr std::string_view kConnectorPen = "   Pen (2,3,16711680) ";

void defineAttributes(bool bendiness)
{
    GisOutputAttributes& attributes = gisOutputAttributes();
    attributes.clear();
    attributes.add("ID", "Char", kLineIdWidth);
    attributes.add("Type", "Char", kTypeWidth);
    attributes.add("Ignore", "Char", 1);
    attributes.add("UCS", "Char", 1);
    attributes.add("Len_or_ANA", "Float");
    attributes.add("n_or_n_F", "Float");
    attributes.add("US_Invert", "Float");
    attributes.add("DS_Invert", "Float");
    attributes.add("Form_Loss", "Float");
    attributes.add("pBlockage", "Float");
    attributes.add("Inlet_Type", "Char", kLineIdWidth);
    attributes.add("Conn_1D_2D", "Char", kTypeWidth);
    attributes.add("Conn_No", "Integer");
    attributes.add("Width_or_Dia", "Float");
    attributes.add("Height_or_WF", "Float");
    attributes.add("Number_of", "Integer");
    attributes.add("Height_Cont", "Float");
    attributes.add("Width_Cont", "Float");
    attributes.add("Entry_Loss", "Float");
    attributes.add("Exit_Loss", "Float");
    if (bendiness) {
        attributes.add("Actual_Len", "Float");
        attributes.add("Min_Len", "Float");
        attributes.add("Sinuosity_Index", "Float");
    }
}

std::string number(float value)
{
    return threeDecimals(static_cast<double>(value));
}

std::string letter(char value)
{
    return quotedValue(trim({&value, 1}));
}

// A closed line is divided by 0, unguarded; deliberate, its index shows as Infinity.
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
void setPen(std::int32_t gisID, const NbcLine& line)
{
    if (line.type == "S") {
        gisLayer(gisID).mifLayer.style1 = kChannelPen;
    } else if (line.type == "X") {
        gisLayer(gisID).mifLayer.style1 = kConnectorPen;
    }
}

// The lines that `belongs` picks.
template <typename Belongs>
void writeLayer(const NbcLines& lines, const std::string& name, bool bendiness, Belongs belongs)
{
    defineAttributes(bendiness);
    std::int32_t gisID = openOutputLayer(name, "L");
    for (const NbcLine& line : lines) {
        if (belongs(line)) {
            setPen(gisID, line);
            writePolylineObject(gisID, line.x, line.y, recordOf(line, bendiness));
        }
    }
    gisCloseLayer(gisID);
}

} // namespace

void nbc_write_nwk_single(const NbcLines& lines, const std::string& name)
{
    say("Writing 1d_nwk file.");
    writeLayer(lines, name, false, [](const NbcLine&) { return true; });
    say("Finished writing 1d_nwk file.");
}

void nbc_write_nwk(NbcLines& lines, const NbcBranches& branches, bool bendiness, bool outputGiven,
                   const std::string& outputName)
{
    auto layers = static_cast<std::int32_t>(branches.layerNames.size());
    if (outputGiven) {
        say("Using user-specfied output file: ", outputName);
        for (NbcLine& line : lines) {
            line.layer = 1;
        }
        layers = 1;
    }
    say("Writing ", layers, " 1d_nwk files.");
    for (std::int32_t k = 1; k <= layers; ++k) {
        const std::string name =
            outputGiven ? outputName : nwkLayerName(branches.layerNames[static_cast<std::size_t>(k - 1)]);
        writeLayer(lines, name, bendiness, [k](const NbcLine& line) { return line.layer == k; });
    }
    say("Finished writing 1d_nwk file.");
}

} // namespace gridforge
