#include "host/file_identity.h"

#include "host/file_system.h"

#include <string>

namespace gridforge::inline host {

namespace {

std::optional<FileIdentity> identityUnder(const std::string& name)
{
    const std::optional<FileFacts> facts = factsOf(name);
    return facts ? std::optional(facts->identity) : std::nullopt;
}

} // namespace

std::optional<FileIdentity> identityOfOutput(std::string_view name)
{
    return identityUnder(systemName(name));
}

std::optional<FileIdentity> identityOfInput(std::string_view name)
{
    const std::optional<std::string> input = findInput(name);
    return input ? identityUnder(*input) : std::nullopt;
}

} // namespace gridforge::inline host
