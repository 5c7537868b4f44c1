#include "grid_files.h"

#include <bit>
#include <cmath>
#include <cstdint>

namespace catchment {
namespace {

constexpr const char* kProjection =
    R"(PROJCS["GDA94_MGA_zone_56",GEOGCS["GCS_GDA_1994",DATUM["D_GDA_1994",SPHEROID["GRS_1980",6378137.0,298.257222101]],)"
    R"(PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]],PROJECTION["Transverse_Mercator"],)"
    R"(PARAMETER["False_Easting",500000.0],PARAMETER["False_Northing",10000000.0],PARAMETER["Central_Meridian",153.0],)"
    R"(PARAMETER["Scale_Factor",0.9996],PARAMETER["Latitude_Of_Origin",0.0],UNIT["Meter",1.0]])";

std::string headerText(const Place& place)
{
    char text[400];
    std::snprintf(
        text, sizeof text,
        "ncols %ld\r\nnrows %ld\r\nxllcorner %.10g\r\nyllcorner %.10g\r\ncellsize %.10g\r\nNODATA_value %g\r\n",
        place.columns, place.rows, place.xll, place.yll, place.cellsize, kNull);
    return text;
}

std::int64_t thousandths(double value)
{
    return std::llround(value * 1000);
}

void appendText(std::int64_t thousandthsOfIt, std::string& line)
{
    char digits[24];
    int count = 0;
    auto left = static_cast<std::uint64_t>(thousandthsOfIt < 0 ? -thousandthsOfIt : thousandthsOfIt);
    do {
        digits[count++] = static_cast<char>('0' + left % 10);
        left /= 10;
        if (count == 3) {
            digits[count++] = '.';
        }
    } while (left > 0 || count < 5);
    line += ' ';
    if (thousandthsOfIt < 0) {
        line += '-';
    }
    while (count > 0) {
        line += digits[--count];
    }
}

} // namespace

GridFiles::GridFiles(const std::string& base, const Place& place, bool asAsc, bool asFlt)
{
    const std::string header = headerText(place);
    if (asAsc) {
        asc_ = open(base + ".asc");
        put(asc_, header);
    }
    if (asFlt) {
        put(open(base + ".hdr"), header + "byteorder LSBFIRST\r\n");
        flt_ = open(base + ".flt");
    }
    put(open(base + ".prj"), std::string(kProjection) + "\r\n");
}

GridFiles::File GridFiles::open(const std::string& name)
{
    File file(std::fopen(name.c_str(), "wb"));
    if (!file) {
        std::fprintf(stderr, "cannot write %s\n", name.c_str());
        good_ = false;
    }
    return file;
}

void GridFiles::put(const File& file, const std::string& bytes)
{
    good_ = good_ && file && std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size() &&
            std::fflush(file.get()) == 0;
}

void GridFiles::writeRow(const std::vector<double>& cells)
{
    if (asc_) {
        line_.clear();
        for (const double cell : cells) {
            appendText(thousandths(cell), line_);
        }
        put(asc_, line_ += "\r\n");
    }
    if (flt_) {
        line_.clear();
        for (const double cell : cells) {
            const auto bits =
                std::bit_cast<std::uint32_t>(static_cast<float>(static_cast<double>(thousandths(cell)) / 1000));
            for (unsigned shift = 0; shift < 32; shift += 8) {
                line_ += static_cast<char>((bits >> shift) & 0xFFU);
            }
        }
        put(flt_, line_);
    }
}

bool GridFiles::close()
{
    for (File* file : {&asc_, &flt_}) {
        if (*file) {
            good_ = std::fclose(file->release()) == 0 && good_;
        }
    }
    return good_;
}

} // namespace catchment
