#include "host/progress.h"

#include "core/free_form.h"
#include "core/text.h"
#include "host/environment.h"
#include "host/system.h"

#include <algorithm>
#include <atomic>
#include <cassert>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace gridforge::inline host {

namespace {

constexpr std::int64_t kSecond = 1'000'000'000;
constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();

struct Progress {
    const System* below = nullptr; // none where nobody wants to know
    System counting = {};
    SystemFile target = SystemFile::none;
    std::int64_t began = 0;
    std::atomic<std::int64_t> due = kNever; // when the next line is to be written
    std::atomic<std::int64_t> read = 0;
    std::atomic<std::int64_t> written = 0;
    std::atomic<std::int64_t> objects = 0;
};

Progress& progressOfRun()
{
    static Progress progress;
    return progress;
}

// The system that the calls go on to.
const System& below()
{
    const System* const system = progressOfRun().below;
    assert(system != nullptr); // calls are counted, and lines due, only once it is set
    return *system;
}

std::string lineNow(const Progress& p, std::int64_t now)
{
    constexpr std::int64_t kTenth = kSecond / 10;
    const std::int64_t tenths = std::max<std::int64_t>(now - p.began, 0) / kTenth;
    return join("{\"seconds\": ", tenths / 10, '.', tenths % 10, ", \"read\": ", p.read.load(),
                ", \"written\": ", p.written.load(), ", \"objects\": ", p.objects.load(), "}\n");
}

// In one call, so that a pipe takes it as a whole. What cannot be written ends the lines.
void writeProgress(Progress& p, std::int64_t now)
{
    const std::string line = lineNow(p, now);
    if (below().write(p.target, line) != static_cast<std::int64_t>(line.size())) {
        p.due = kNever;
    }
}

// Of several threads that come at the same time one writes. A clock that was set back starts a new second.
void writeIfDue()
{
    Progress& p = progressOfRun();
    std::int64_t due = p.due.load(std::memory_order_relaxed);
    if (due == kNever) {
        return;
    }
    const std::int64_t now = below().now();
    const bool wanted = now >= due || now < due - kSecond;
    if (wanted && p.due.compare_exchange_strong(due, now + kSecond)) {
        writeProgress(p, now);
    }
}

std::int64_t counted(std::atomic<std::int64_t>& count, std::int64_t bytes)
{
    if (bytes > 0) {
        count.fetch_add(bytes, std::memory_order_relaxed);
        writeIfDue();
    }
    return bytes;
}

// --- The calls that count --------------------------------------------------------------------------------------------

std::int64_t countingRead(SystemFile file, std::span<char> target)
{
    return counted(progressOfRun().read, below().read(file, target));
}

std::int64_t countingReadAt(SystemFile file, std::int64_t position, std::span<char> target)
{
    return counted(progressOfRun().read, below().readAt(file, position, target));
}

std::int64_t countingWrite(SystemFile file, std::span<const char> bytes)
{
    return counted(progressOfRun().written, below().write(file, bytes));
}

std::int64_t countingWriteAt(SystemFile file, std::int64_t position, std::span<const char> bytes)
{
    return counted(progressOfRun().written, below().writeAt(file, position, bytes));
}

// --- Where the lines go ----------------------------------------------------------------------------------------------

std::optional<SystemFile> openFileOfNumber(std::string_view text)
{
    constexpr std::int32_t kLastStandardStream = 2;
    std::int32_t number = 0;
    if (!parseNumber(text, number) || number <= kLastStandardStream) {
        return std::nullopt;
    }
    const SystemFile file = theSystem().inherited(number);
    return file == SystemFile::none ? std::nullopt : std::optional(file);
}

std::optional<SystemFile> progressTarget()
{
    constexpr std::string_view kNumbered = "fd:";
    const std::optional<std::string> name = environmentText("GRIDFORGE_PROGRESS");
    if (!name) {
        return std::nullopt;
    }
    const std::string_view number = std::string_view(*name).substr(name->starts_with(kNumbered) ? kNumbered.size() : 0);
    if (number.size() < name->size() || number.find_first_not_of("0123456789") == std::string_view::npos) {
        return openFileOfNumber(number);
    }
    const SystemFile file = theSystem().open(*name, OpenFor::replacing);
    return file == SystemFile::none ? std::nullopt : std::optional(file);
}

} // namespace

void startProgress()
{
    const std::optional<SystemFile> target = progressTarget();
    if (!target) {
        return;
    }
    Progress& p = progressOfRun();
    p.below = &theSystem();
    p.target = *target;
    p.began = below().now();
    p.due = p.began;
    p.read = 0;
    p.written = 0;
    p.objects = 0;
    p.counting = *p.below;
    p.counting.read = countingRead;
    p.counting.readAt = countingReadAt;
    p.counting.write = countingWrite;
    p.counting.writeAt = countingWriteAt;
    useSystem(p.counting);
}

void countObject()
{
    progressOfRun().objects.fetch_add(1, std::memory_order_relaxed);
    writeIfDue();
}

void endProgress()
{
    Progress& p = progressOfRun();
    if (p.below == nullptr) {
        return;
    }
    if (p.due != kNever) {
        writeProgress(p, below().now());
    }
    p.due = kNever;
    p.below->close(p.target);
    useSystem(*p.below);
    p.below = nullptr;
}

} // namespace gridforge::inline host
