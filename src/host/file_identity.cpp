#include "host/file_identity.h"

#include "host/file_system.h"

#include <string>
#include <sys/stat.h>

namespace gridforge {

namespace {

FileIdentity identityIn(const struct stat& status)
{
    return {status.st_dev, status.st_ino, S_ISREG(status.st_mode)};
}

std::optional<FileIdentity> identityUnder(const std::string& name)
{
    struct stat status = {};
    return stat(name.c_str(), &status) == 0 ? std::optional(identityIn(status)) : std::nullopt;
}

} // namespace

std::optional<FileIdentity> identityOf(int descriptor)
{
    struct stat status = {};
    return fstat(descriptor, &status) == 0 ? std::optional(identityIn(status)) : std::nullopt;
}

std::optional<FileIdentity> identityOfOutput(std::string_view name)
{
    return identityUnder(systemName(name));
}

std::optional<FileIdentity> identityOfInput(std::string_view name)
{
    const std::optional<std::string> input = findInput(name);
    return input ? identityUnder(*input) : std::nullopt;
}

} // namespace gridforge
