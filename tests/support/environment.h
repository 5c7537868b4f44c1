// Settings of the environment while an object of this lives.
#pragma once

#include <cstdlib>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace gridforge::test {

class Environment {
public:
    Environment(std::initializer_list<std::pair<std::string, std::string>> settings) : settings_(settings)
    {
        for (const auto& [name, value] : settings_) {
            setenv(name.c_str(), value.c_str(), 1);
        }
    }
    ~Environment()
    {
        for (const auto& [name, value] : settings_) {
            unsetenv(name.c_str());
        }
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    std::vector<std::pair<std::string, std::string>> settings_;
};

} // namespace gridforge::test
