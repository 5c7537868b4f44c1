#include "netcdf/library.h"

#include <algorithm>
#include <array>
#include <bit>
#include <gtest/gtest.h>

namespace gridforge {
namespace {

TEST(NetcdfLibrary, HasEveryRoutine)
{
    using Addresses = std::array<const void*, sizeof(netcdf::Library) / sizeof(void*)>;
    const auto addresses = std::bit_cast<Addresses>(netcdf::library());
    EXPECT_EQ(std::ranges::count(addresses, nullptr), 0);
}

TEST(NetcdfLibrary, IsTheOneThatTheProcessAlreadyUses)
{
    EXPECT_EQ(netcdf::library().nc_close, &nc_close);
}

} // namespace
} // namespace gridforge
