#include "support/environment.h"

#include <windows.h>

namespace gridforge::test {

// For those who ask the system and for those who ask the C library, which keeps a list of its own.
void setVariable(const std::string& name, const std::string& value)
{
    SetEnvironmentVariableA(name.c_str(), value.c_str());
    _putenv_s(name.c_str(), value.c_str());
}

void clearVariable(const std::string& name)
{
    SetEnvironmentVariableA(name.c_str(), nullptr);
    _putenv_s(name.c_str(), "");
}

} // namespace gridforge::test
