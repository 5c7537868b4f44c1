// Makes the grids that scripts/bench times whole runs on: a rolling terrain, and on it the level or the depth of a flood. The
// same arguments always make the same bytes. It shares no code with the tool.
//
// usage: make_grid ground|level|depth COLUMNS ROWS CELL_SIZE EVENT FILE      FILE ends in .flt (with its .hdr) or .asc

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr double kWest = 382000;
constexpr double kSouth = 6354000;
constexpr double kNull = -9999;

enum class Kind { ground, level, depth };

struct Request {
    Kind kind = Kind::ground;
    std::int64_t columns = 0;
    std::int64_t rows = 0;
    double cell = 0;
    std::uint64_t event = 0;
    std::string name;
};

// 0 to 1, for each place and event another number (the finaliser of SplitMix64).
double noise(std::uint64_t event, std::int64_t row, std::int64_t column)
{
    auto z = (event << 56U) ^ (static_cast<std::uint64_t>(row) << 28U) ^ static_cast<std::uint64_t>(column);
    z += 0x9E3779B97F4A7C15U;
    z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9U;
    z = (z ^ (z >> 27U)) * 0x94D049BB133111EBU;
    return static_cast<double>((z ^ (z >> 31U)) >> 40U) / static_cast<double>(1U << 24U);
}

// What ground and water have of one direction; a cell takes sums and products of its column's and its row's.
struct Waves {
    double wide = 0;
    double narrow = 0;
    double water = 0;
};

std::vector<Waves> waves(std::int64_t count, double cell, double phase, std::uint64_t event)
{
    std::vector<Waves> made;
    for (std::int64_t i = 0; i < count; ++i) {
        const double metres = (static_cast<double>(i) + 0.5) * cell;
        made.push_back({std::sin(metres / 260 + phase), std::sin(metres / 47 + 2 * phase),
                        0.25 * std::sin(metres / 190 + static_cast<double>(event))});
    }
    return made;
}

// Three cells in five are wet, in patches of some hundred metres. Levels of events cross each other.
void fillRow(const Request& request, const std::vector<Waves>& across, const Waves& along, std::int64_t row,
             std::vector<float>& cells)
{
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const auto column = static_cast<std::int64_t>(i);
        const double ground = 20 + 4 * (across[i].wide * along.wide) + 0.4 * (across[i].narrow + along.narrow) +
                              0.1 * noise(0, row, column);
        const double level = 20.8 + across[i].water + along.water + 0.02 * noise(request.event, row, column);
        double value = ground;
        if (request.kind != Kind::ground) {
            const double wet = request.kind == Kind::level ? level : level - ground;
            value = level - ground > 0.05 ? wet : kNull;
        }
        cells[i] = static_cast<float>(value);
    }
}

[[noreturn]] void fail(const std::string& why)
{
    std::fprintf(stderr, "make_grid: %s\n", why.c_str());
    std::exit(EXIT_FAILURE);
}

struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Closer>;

File create(const std::string& name)
{
    File file(std::fopen(name.c_str(), "wb"));
    if (file == nullptr) {
        fail("cannot write " + name);
    }
    return file;
}

void writeHeader(std::FILE* file, const Request& request)
{
    std::fprintf(file, "ncols %lld\nnrows %lld\nxllcorner %.1f\nyllcorner %.1f\ncellsize %.1f\nNODATA_value %.1f\n",
                 static_cast<long long>(request.columns), static_cast<long long>(request.rows), kWest, kSouth,
                 request.cell, kNull);
}

void writeText(std::FILE* file, const std::vector<float>& cells)
{
    std::string text;
    char field[32];
    for (const float cell : cells) {
        const int length = std::snprintf(field, sizeof field, "%10.3f", static_cast<double>(cell));
        text.append(field, static_cast<std::size_t>(length));
    }
    text += '\n';
    std::fwrite(text.data(), 1, text.size(), file);
}

void makeGrid(const Request& request)
{
    const bool binary = request.name.ends_with(".flt");
    const File file = create(request.name);
    if (binary) {
        const File header = create(request.name.substr(0, request.name.size() - 4) + ".hdr");
        writeHeader(header.get(), request);
        std::fputs("byteorder LSBFIRST\n", header.get());
    } else {
        writeHeader(file.get(), request);
    }
    const std::vector<Waves> across = waves(request.columns, request.cell, 0.3, request.event);
    const std::vector<Waves> along = waves(request.rows, request.cell, 1.1, request.event + 3);
    std::vector<float> cells(static_cast<std::size_t>(request.columns));
    for (std::int64_t row = request.rows; row-- > 0;) {
        fillRow(request, across, along[static_cast<std::size_t>(row)], row, cells);
        if (binary) {
            std::fwrite(cells.data(), sizeof(float), cells.size(), file.get());
        } else {
            writeText(file.get(), cells);
        }
    }
    if (std::fflush(file.get()) != 0 || std::ferror(file.get()) != 0) {
        fail("cannot write " + request.name);
    }
}

Kind kindNamed(std::string_view name)
{
    if (name == "ground") {
        return Kind::ground;
    }
    if (name == "level") {
        return Kind::level;
    }
    if (name == "depth") {
        return Kind::depth;
    }
    fail("ground, level or depth, not " + std::string(name));
}

} // namespace

int main(int count, char** words)
{
    if (count != 7) {
        fail("wrong number of arguments");
    }
    const Request request{kindNamed(words[1]),
                          std::atoll(words[2]),
                          std::atoll(words[3]),
                          std::atof(words[4]),
                          static_cast<std::uint64_t>(std::atoll(words[5])),
                          words[6]};
    if (request.columns < 1 || request.rows < 1 || request.cell <= 0) {
        fail("no cells");
    }
    makeGrid(request);
    return EXIT_SUCCESS;
}
