#include "support/ogr.h"

#include <array>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <sstream>

namespace gridforge::test {

namespace {

// What the command writes; the status in `status`.
std::string outputOf(const std::string& command, int& status)
{
    std::string text;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        status = -1;
        return text;
    }
    std::array<char, 65536> buffer;
    std::size_t got = 0;
    while ((got = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0) {
        text.append(buffer.data(), got);
    }
    status = pclose(pipe);
    return text;
}

std::vector<double> numbersIn(const std::string& text)
{
    std::vector<double> numbers;
    const char* at = text.c_str();
    while (*at != '\0') {
        if (std::isdigit(static_cast<unsigned char>(*at)) != 0 || *at == '-') {
            char* end = nullptr;
            numbers.push_back(std::strtod(at, &end));
            at = end;
        } else {
            ++at;
        }
    }
    return numbers;
}

bool isGeometry(const std::string& line)
{
    return line.size() > 3 && line.starts_with("  ") && std::isupper(static_cast<unsigned char>(line[2])) != 0 &&
           line.ends_with(")") && line.find(" = ") == std::string::npos;
}

} // namespace

bool haveOgr()
{
    int status = 0;
    outputOf("ogrinfo --version 2>/dev/null", status);
    return status == 0;
}

std::vector<OgrFeature> ogrFeatures(const std::string& fileName)
{
    int status = 0;
    std::istringstream lines(outputOf("ogrinfo -ro -al -q '" + fileName + "' 2>&1", status));
    EXPECT_EQ(status, 0) << fileName;
    std::vector<OgrFeature> features;
    std::string line;
    while (std::getline(lines, line)) {
        const std::size_t equals = line.find(") = ");
        if (line.starts_with("OGRFeature(")) {
            features.emplace_back();
        } else if (features.empty()) {
            continue;
        } else if (isGeometry(line)) {
            features.back().kind = line.substr(2, line.find(" (") - 2);
            features.back().numbers = numbersIn(line.substr(line.find('(')));
        } else if (equals != std::string::npos && !line.starts_with("  Style = ")) {
            features.back().values.push_back(line.substr(equals + 4));
        }
    }
    return features;
}

std::vector<std::string> ogrFields(const std::string& fileName)
{
    int status = 0;
    std::istringstream lines(outputOf("ogrinfo -ro -al -so '" + fileName + "' 2>&1", status));
    EXPECT_EQ(status, 0) << fileName;
    std::vector<std::string> fields;
    std::string line;
    while (std::getline(lines, line)) {
        const std::size_t colon = line.find(": ");
        const bool named = colon != std::string::npos && line.find(' ') > colon && line.ends_with(".0)");
        const bool real = colon != std::string::npos && line.find(": Real (") == colon;
        if (named || real) {
            fields.push_back(line);
        }
    }
    return fields;
}

bool ogrConvert(const std::string& arguments)
{
    int status = 0;
    const std::string said = outputOf("ogr2ogr " + arguments + " 2>&1", status);
    EXPECT_EQ(status, 0) << said;
    return status == 0;
}

} // namespace gridforge::test
