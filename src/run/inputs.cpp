#include "run/inputs.h"

#include "core/names.h"
#include "core/number_text.h"
#include "core/product.h"
#include "core/text.h"
#include "host/ends.h"
#include "host/file_system.h"

namespace gridforge::run {

namespace {

constexpr int kCountWidth = 3;

void addFound(const std::string& raw, const std::string& name, InputFileList& inputs)
{
    inputs.add(cut(FILEFOLDERPATH(raw) + name, kNameWidth));
    say("   File", integerField(inputs.count(), kCountWidth), ": ", inputs[inputs.count()]);
    if (inputs.count() > kMaxInputs) {
        failTooManyInputs();
    }
}

// These messages have a leading blank of their own.
void requireSearch(SearchEnd end)
{
    switch (end) {
    case SearchEnd::outOfMemory: fail(" ERROR - Out of memory.  Contact ", kSupportContact);
    case SearchEnd::invalidName: fail(" ERROR - Invalid file or pathname specified");
    case SearchEnd::noSuchFile:
    case SearchEnd::done: break;
    }
}

void expandInput(const std::string& raw, InputFileList& inputs)
{
    const SearchResult search = searchFolder(raw);
    for (const std::string& name : search.names) {
        addFound(raw, name, inputs);
    }
    requireSearch(search.end);
    if (search.names.empty()) {
        fail("ERROR - No valid file found for input: ", raw);
    }
}

} // namespace

InputFileList expandInputs(const std::vector<std::string>& rawInputList)
{
    say("Checking for wildcards in filenames...");
    InputFileList inputs;
    std::int32_t number = 0;
    for (const std::string& raw : rawInputList) {
        say("Input File", integerField(++number, kCountWidth), ": ", raw);
        expandInput(raw, inputs);
    }
    if (inputs.count() == 0) {
        fail(" ERROR - No valid files found.");
    }
    return inputs;
}

void failTooManyInputs()
{
    // The number in the text is not the limit, on purpose: callers look for these words.
    fail("ERROR - More the 100 input files specified. Please contact ", kSupportContact, " to get this raised.");
}

} // namespace gridforge::run
