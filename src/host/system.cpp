#include "host/system.h"

namespace gridforge {

namespace {

// Before main, so that no large array comes from elsewhere.
[[maybe_unused]] const bool kPagesInUse = usePages(nativePages());

const System*& chosen()
{
    static const System* system = &nativeSystem();
    return system;
}

} // namespace

const System& theSystem()
{
    return *chosen();
}

std::optional<FileFacts> factsOf(const std::string& name)
{
    FileFacts facts;
    return theSystem().facts(name, facts) == SystemStatus::done ? std::optional(facts) : std::nullopt;
}

void useSystem(const System& system)
{
    chosen() = &system;
}

} // namespace gridforge
