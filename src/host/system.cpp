#include "host/system.h"

#include "core/simd.h"

namespace gridforge::inline host {

namespace {

// Before main, so that no large array comes from elsewhere, and no kernel has asked yet.
[[maybe_unused]] const bool kPagesInUse = usePages(nativePages());
[[maybe_unused]] const bool kAvx2Allowed = allowAvx2(nativeAvx2());

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

} // namespace gridforge::inline host
