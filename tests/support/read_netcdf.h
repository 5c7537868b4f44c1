// A NetCDF file read back by the library, for tests that link it. What is not there is a test failure.
#pragma once

#include "support/tool_run.h"

#include <netcdf.h>
#include <string>
#include <utility>
#include <vector>

namespace gridforge::test {

class NetcdfReading {
public:
    NetcdfReading(const ToolRun& run, std::string_view name)
    {
        run.expectFile(name);
        EXPECT_EQ(nc_open((run.folder() / name).c_str(), NC_NOWRITE, &file_), NC_NOERR) << name;
    }
    ~NetcdfReading() { nc_close(file_); }
    NetcdfReading(const NetcdfReading&) = delete;
    NetcdfReading& operator=(const NetcdfReading&) = delete;

    int id() const { return file_; }
    int variable(const char* name) const
    {
        int id = -1;
        EXPECT_EQ(nc_inq_varid(file_, name, &id), NC_NOERR) << name;
        return id;
    }
    std::vector<std::string> variables() const
    {
        int count = 0;
        nc_inq_nvars(file_, &count);
        std::vector<std::string> names;
        for (int i = 0; i < count; ++i) {
            char name[NC_MAX_NAME + 1] = {};
            nc_inq_varname(file_, i, name);
            names.emplace_back(name);
        }
        return names;
    }
    // Name and length of each dimension of a variable, the slowest first.
    using Shape = std::vector<std::pair<std::string, std::size_t>>;
    Shape shape(const char* name) const
    {
        int dimensions[NC_MAX_VAR_DIMS] = {};
        int count = 0;
        EXPECT_EQ(nc_inq_varndims(file_, variable(name), &count), NC_NOERR);
        EXPECT_EQ(nc_inq_vardimid(file_, variable(name), dimensions), NC_NOERR);
        Shape shape;
        for (int i = 0; i < count; ++i) {
            char dimension[NC_MAX_NAME + 1] = {};
            std::size_t length = 0;
            EXPECT_EQ(nc_inq_dim(file_, dimensions[i], dimension, &length), NC_NOERR);
            shape.emplace_back(dimension, length);
        }
        return shape;
    }
    // Name and text of each attribute in their order, of a variable id or NC_GLOBAL; of others than texts the name alone.
    using Texts = std::vector<std::pair<std::string, std::string>>;
    Texts texts(int variable) const
    {
        int count = 0;
        if (variable == NC_GLOBAL) {
            nc_inq_natts(file_, &count);
        } else {
            EXPECT_EQ(nc_inq_varnatts(file_, variable, &count), NC_NOERR);
        }
        Texts texts;
        for (int i = 0; i < count; ++i) {
            char name[NC_MAX_NAME + 1] = {};
            nc_type type = NC_NAT;
            std::size_t length = 0;
            EXPECT_EQ(nc_inq_attname(file_, variable, i, name), NC_NOERR);
            EXPECT_EQ(nc_inq_att(file_, variable, name, &type, &length), NC_NOERR);
            std::string text(type == NC_CHAR ? length : 0, ' ');
            if (type == NC_CHAR) {
                EXPECT_EQ(nc_get_att_text(file_, variable, name, text.data()), NC_NOERR);
            }
            texts.emplace_back(name, text);
        }
        return texts;
    }
    // All values of a variable, the fastest dimension last.
    std::vector<double> values(const char* name) const
    {
        std::size_t count = 1;
        for (const auto& [dimension, length] : shape(name)) {
            count *= length;
        }
        std::vector<double> values(count);
        EXPECT_EQ(nc_get_var_double(file_, variable(name), values.data()), NC_NOERR);
        return values;
    }
    double fill(const char* name) const
    {
        double value = 0;
        EXPECT_EQ(nc_get_att_double(file_, variable(name), "_FillValue", &value), NC_NOERR);
        return value;
    }
    struct Packing {
        int shuffle = -1;
        int deflate = -1;
        int level = -1;
        friend bool operator==(const Packing&, const Packing&) = default;
    };
    Packing packing(const char* name) const
    {
        Packing packing;
        EXPECT_EQ(nc_inq_var_deflate(file_, variable(name), &packing.shuffle, &packing.deflate, &packing.level),
                  NC_NOERR);
        if (packing.deflate == 0) {
            packing.level = 0;
        }
        return packing;
    }

private:
    int file_ = -1;
};

} // namespace gridforge::test
