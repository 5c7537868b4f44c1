// Settings of the environment while an object of this lives.
#pragma once

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace gridforge::test {

void setVariable(const std::string& name, const std::string& value);
void clearVariable(const std::string& name);

class Environment {
public:
    Environment(std::initializer_list<std::pair<std::string, std::string>> settings) : settings_(settings)
    {
        for (const auto& [name, value] : settings_) {
            setVariable(name, value);
        }
    }
    ~Environment()
    {
        for (const auto& [name, value] : settings_) {
            clearVariable(name);
        }
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    std::vector<std::pair<std::string, std::string>> settings_;
};

} // namespace gridforge::test
