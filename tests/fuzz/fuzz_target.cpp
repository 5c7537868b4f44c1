// The fuzz target: fuzz_target --kind=KIND and what libFuzzer takes. --kinds lists them.
#include "fuzz/changes.h"
#include "fuzz/fuzz_run.h"
#include "fuzz/kinds.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace {

using namespace gridforge;

constexpr std::string_view kKindOption = "--kind=";

const fuzz::Kind*& chosenKind()
{
    static const fuzz::Kind* kind = nullptr;
    return kind;
}

const fuzz::Kind* findKind(std::string_view name)
{
    for (const auto& kinds : {fuzz::readers(), fuzz::operations()}) {
        const auto found = std::ranges::find(kinds, name, &fuzz::Kind::name);
        if (found != kinds.end()) {
            return &*found;
        }
    }
    return nullptr;
}

[[noreturn]] void listKinds()
{
    for (const auto& kinds : {fuzz::readers(), fuzz::operations()}) {
        for (const fuzz::Kind& kind : kinds) {
            std::printf("%.*s\n", static_cast<int>(kind.name.size()), kind.name.data());
        }
    }
    std::exit(EXIT_SUCCESS);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(const int* argc, char*** argv)
{
    for (int i = 1; i < *argc; ++i) {
        const std::string_view argument = (*argv)[i];
        if (argument == "--kinds") {
            listKinds();
        }
        if (argument.starts_with(kKindOption)) {
            chosenKind() = findKind(argument.substr(kKindOption.size()));
        }
    }
    if (chosenKind() == nullptr) {
        std::fputs("fuzz_target: --kind=KIND must name one of --kinds\n", stderr);
        std::exit(EXIT_FAILURE);
    }
    fuzz::prepareProcess();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    chosenKind()->take(fuzz::split({reinterpret_cast<const char*>(data), size}));
    return 0;
}

// Mostly changes one of the files, or the command line, and leaves the rest as it is: by the fuzzer's own changes, which know
// nothing of texts and numbers, or by ours.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most, unsigned seed)
{
    constexpr unsigned kWholeOneIn = 16;
    fuzz::Random random(seed);
    const std::string whole(reinterpret_cast<const char*>(data), size);
    fuzz::NamedFiles input = fuzz::split(whole);
    const std::size_t part = random() % (input.files.size() + 1);
    std::string_view& chosen = part == 0 ? input.line : input.files[part - 1].bytes;
    if (random() % kWholeOneIn == 0 || size - chosen.size() >= most) {
        return LLVMFuzzerMutate(data, size, most);
    }
    const std::size_t room = most - (size - chosen.size());
    std::string bytes(chosen);
    if (random() % 2 == 0) {
        bytes = fuzz::changed(chosen, random);
    } else {
        bytes.resize(room);
        bytes.resize(LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(bytes.data()), chosen.size(), room));
    }
    chosen = bytes;
    const std::string joined = fuzz::join(input);
    const std::size_t count = std::min(joined.size(), most);
    std::copy_n(joined.begin(), count, data);
    return count;
}
