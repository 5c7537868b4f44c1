#include "core/names.h"
#include "core/numbers.h"
#include "core/text.h"
#include "gis/gis_messages.h"
#include "gis/layer_table.h"
#include "gis/layer_tracking.h"
#include "gis/mif_reader.h"
#include "host/ends.h"
#include "host/file_system.h"
#include "host/messages.h"

namespace gridforge {

namespace {

bool isInput(std::string_view mode)
{
    return trimRight(mode) == "I";
}

bool isOutput(std::string_view mode)
{
    return trimRight(mode) == "O";
}

// --- .mif and .mid ---------------------------------------------------------------------------------------------------

void compareMiProjection(Unit mifUnit)
{
    const std::string found = TRIMF(REMOVEQUOTES(REMOVETABS(REMOVESPACES(UPPERCASE(mifFindCoordSysLine(mifUnit))))));
    seekTo(mifUnit, 0);
    if (found == gisChecks().miProjection) {
        return;
    }
    const std::string_view text =
        " 0305 - Projection of .mif file is different to that specified by the MI Projection == command.";
    if (gisChecks().projectionCheckIsError) {
        DMESSAGES().line[1] = "Use \"MI Projection Check == WARNING\" to change message to a WARNING.";
        report("ERROR", text);
        EXITS();
    }
    report("WARNING", text);
}

// False when the save-date check has closed the files and wants them opened again.
bool openMifPair(std::string_view fileName, MifLayer& mif, std::string_view mode, bool attributesOnly)
{
    std::string name(trimLeft(fileName));
    std::string base = FILENAMEPATH(name);
    if (!attributesOnly) {
        const std::string extension = FILEEXT(name);
        if (extension != ".mif" && extension != ".mid") {
            base = name;
        }
        OPENER(mif.mifUnit, mode, base + ".mif");
        name = base + ".mid";
    }
    if (isInput(mode) && mif.mifUnit > 0 && !gisChecks().miProjection.empty()) {
        compareMiProjection(mif.mifUnit);
    }
    OPENER(mif.midUnit, mode, name);
    return !isInput(mode) || !gisChecks().checkSaveDates || FILEEXT(name) != ".mid" ||
           checkSaveDate(name, join(base, kTabExtension), mif.mifUnit, mif.midUnit, gisChecks().saveDateMustHold);
}

void mifOpenFiles(std::string_view fileName, MifLayer& mif, std::string_view mode, bool attributesOnly)
{
    while (!openMifPair(fileName, mif, mode, attributesOnly)) {
    }
}

// --- .shp and .dbf ---------------------------------------------------------------------------------------------------

// The name of the projection in the line of a .prj, which becomes upper case.
std::string shpProjectionLine(std::string& line)
{
    line = UPPERCASE(line);
    std::string rest;
    std::string name;
    if (FLAGEXISTSRET(line, "PROJCS[", rest)) {
        FreeForm(rest).nextText(name, kLineWidth);
    } else {
        gisWarn("WARNING 0420 - Could not find PROJCS definition.  Projection of .shp file might not be cartesian.");
    }
    return name;
}

void compareShpProjection(Unit& prjUnit, const std::string& prjName)
{
    OPENER(prjUnit, "I ", prjName);
    std::string line;
    if (!readLine(prjUnit, line)) {
        gisFail("ERROR 0420 - Could not read projection line in .prj file.");
    }
    CLOSER(prjUnit);
    if (trimLeft(shpProjectionLine(line)) == gisChecks().shpProjection) {
        return;
    }
    const std::string_view text =
        " 0305 - Projection of .shp file is different to that specified by the SHP Projection == command.";
    if (gisChecks().projectionCheckIsError) {
        gisFail(join("ERROR", text), "Use \"GIS Projection Check == WARNING\" to change message to a WARNING.");
    }
    gisWarn(join("WARNING", text));
}

// The .shp of a layer's set for one type of shape.
std::string setName(std::string_view name, std::string_view letter)
{
    return join(FILENAMEPATH(name), "_", letter, ".shp");
}

void openShpForInput(const std::string& shpName, ShpFile& shp)
{
    const std::string prjName = FILENAMEPATH(shpName) + ".prj";
    if (!gisChecks().shpProjection.empty() && inputExists(prjName)) {
        compareShpProjection(shp.prjUnit, prjName);
    }
    OPENER(shp.shpUnit, "BI", shpName);
    OPENER(shp.shpUnitBE, "BE", shpName);
}

void openShpForOutput(const std::string& shpName, ShpFile& shp)
{
    const std::string base = FILENAMEPATH(shpName);
    OPENER(shp.shpUnit, "SB", shpName);
    OPENER(shp.shpUnitBE, "SE", shpName);
    OPENER(shp.shxUnit, "SB", base + ".shx");
    OPENER(shp.shxUnitBE, "SE", base + ".shx");
    OPENER(shp.prjUnit, "O ", base + ".prj");
}

// False for an input file with a type letter that does not exist.
bool openShpFile(std::string_view name, std::string_view letter, DbfTable& dbf, ShpFile& shp, std::string_view mode,
                 bool attributesOnly)
{
    dbf.dbfUnit = 0;
    shp.shpUnit = shp.shpUnitBE = shp.shxUnit = shp.shxUnitBE = 0;
    if (!isInput(mode) && !isOutput(mode)) {
        gisMisuse("[OpenshpFile]");
    }
    const std::string_view expected = attributesOnly ? ".dbf" : ".shp";
    if (FILEEXT(name) != expected) {
        gisFail(join("ERROR 0426 - ", expected, " file not specified."));
    }
    std::string shpName(name);
    if (!attributesOnly) {
        if (isOutput(mode) && letter.empty()) {
            gisMisuse("[OpenshpFileO]");
        }
        if (!letter.empty()) {
            shpName = setName(name, letter);
        }
        if (isInput(mode)) {
            if (!letter.empty() && !inputExists(shpName)) {
                return false;
            }
            openShpForInput(shpName, shp);
        } else {
            openShpForOutput(shpName, shp);
        }
    }
    OPENER(dbf.dbfUnit, isInput(mode) ? "BI" : "BO", FILENAMEPATH(shpName) + ".dbf");
    return true;
}

// Points, lines and regions go to sets of files of their own.
struct ShapeFamily {
    char letter;
    std::size_t index;
    std::int32_t shapeType;
};
constexpr std::array<ShapeFamily, 3> kShapeFamilies = {{{'P', 0, 1}, {'L', 1, 3}, {'R', 2, 5}}};

const ShapeFamily& shapeFamily(char letter)
{
    for (const ShapeFamily& family : kShapeFamilies) {
        if (letter == family.letter || letter == family.letter - 'A' + 'a') {
            return family;
        }
    }
    gisMisuse("[OpenshpFileType]");
}

// All sets are looked at before the first one is opened: to open an input for output would empty its .prj and .dbf.
void requireNoInputSet(std::string_view name, std::string_view shapeTypes, bool attributesOnly)
{
    for (const char& letter : shapeTypes) {
        const std::string base = FILENAMEPATH(attributesOnly ? std::string(name) : setName(name, {&letter, 1}));
        for (const std::string_view extension : {".shp", ".shx", ".prj", ".dbf"}) {
            if ((!attributesOnly || extension == ".dbf") && isOpenAsInput(join(base, extension))) {
                fail("ERROR - Output layer is also an input layer: ", name);
            }
        }
    }
}

void openShpOutputs(std::string_view name, std::string_view shapeTypes, Layer& slot, std::string_view mode,
                    bool attributesOnly)
{
    requireNoInputSet(name, shapeTypes, attributesOnly);
    for (const char& letter : shapeTypes) {
        const ShapeFamily& family = shapeFamily(letter);
        slot.shpFiles[family.index].shapeType = family.shapeType;
        openShpFile(name, {&letter, 1}, slot.dbfTable[family.index], slot.shpFiles[family.index], mode, attributesOnly);
    }
}

// --- Any family ------------------------------------------------------------------------------------------------------

bool openFiles(std::string_view name, std::string_view shapeTypes, Layer& slot, std::string_view mode,
               bool attributesOnly)
{
    switch (slot.layerFormat) {
    case kLayerMif: mifOpenFiles(name, slot.mifLayer, mode, attributesOnly); return true;
    case kLayerShp:
        if (slot.layerOutput) {
            openShpOutputs(name, shapeTypes, slot, mode, attributesOnly);
            return true;
        }
        return openShpFile(name, shapeTypes, slot.dbfTable[0], slot.shpFiles[0], mode, attributesOnly);
    case kLayerBareTable:
        slot.mifLayer.mifUnit = 0;
        OPENER(slot.mifLayer.midUnit, mode, name);
        slot.layerFormat = kLayerMif;
        return true;
    default: gisMisuse("[gisOpenLayer]");
    }
}

} // namespace

std::int32_t gisOpenLayer(std::string_view fileName, std::string_view shapeTypes, std::string_view mode,
                          bool attributesOnly)
{
    const std::string name = cut(fileName, kNameWidth);
    gisSay(join("Opening GIS Layer: ", name));
    const std::int32_t gisID = findFreeSlot();
    if (gisID == 0) {
        gisFail("ERROR 0251 - Cannot have more than 100 GIS layers open at once.");
    }
    gisSay(join("GIS Layer assigned ID of ", gisID));
    gisInitialiseLayer(gisID);
    Layer& slot = gisLayer(gisID);
    slot.layerFormat = gisFormatOf(FILEEXT(name), attributesOnly);
    if (isInput(mode)) {
        slot.layerTrackId = trackLayer(name, gisID);
    } else if (isOutput(mode)) {
        slot.layerOutput = true;
    } else {
        gisMisuse("[OpenGIS]");
    }
    if (!openFiles(name, trimRight(shapeTypes), slot, mode, attributesOnly)) {
        slot.layerFormat = kLayerNone;
        return 0;
    }
    slot.layerOpen = true;
    slot.layerName = name;
    return gisID;
}

} // namespace gridforge
