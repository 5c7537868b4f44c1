#include "support/environment.h"

#include <cstdlib>

namespace gridforge::test {

void setVariable(const std::string& name, const std::string& value)
{
    setenv(name.c_str(), value.c_str(), 1);
}

void clearVariable(const std::string& name)
{
    unsetenv(name.c_str());
}

} // namespace gridforge::test
