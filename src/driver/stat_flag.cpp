#include "driver/stat_flag.h"

#include "core/free_form.h"
#include "core/text.h"
#include "host/ends.h"

#include <array>
#include <string_view>

namespace gridforge::driver {

namespace {

constexpr std::string_view kRank = "Rank";

struct StatisticRow {
    std::string_view key;
    bool ops::StatOptions::*option;
};

// In order: the first key that stands in the argument is meant.
constexpr std::array<StatisticRow, 6> kStatistics = {{{"All", &ops::StatOptions::all},
                                                      {"Mean", &ops::StatOptions::mean},
                                                      {"Median", &ops::StatOptions::median},
                                                      {"Min", &ops::StatOptions::minimum},
                                                      {"Max", &ops::StatOptions::maximum},
                                                      {"Frac", &ops::StatOptions::fraction}}};

// The key was found whatever its case, but its rank only stands after the exact spelling; without that the text begins
// at the fourth character, which is no number. So -statrank5 is refused, on purpose.
std::string rankText(const std::string& argument)
{
    constexpr std::size_t kFourthCharacter = 3;
    const std::size_t at = argument.find(kRank);
    return argument.substr(at == std::string::npos ? kFourthCharacter : at + kRank.size());
}

void addRank(ops::StatOptions& options, const std::string& text)
{
    std::int32_t rank = 0;
    if (FLAGEXISTS(text, "All")) {
        options.allRanks = true;
    } else if (CHECKINT(text, rank)) {
        options.ranks.push_back(rank);
        say("Adding Rank: ", rank);
    } else {
        refuse("ERROR - Reading \"-statRank\" should be followed by \"All\" or integer rank instead: ", quoted(text));
    }
}

} // namespace

void addStatistic(ops::StatOptions& options, const std::string& argument)
{
    if (FLAGEXISTS(argument, kRank)) {
        addRank(options, rankText(argument));
        return;
    }
    for (const StatisticRow& row : kStatistics) {
        if (FLAGEXISTS(argument, row.key)) {
            options.*row.option = true;
            return;
        }
    }
    refuse("ERROR - Expecting  one of \"All\", \"Mean\", \"Median\", \"Min\", \"Max\", \"Frac\", \"Rank<>\". Found: ",
           quoted(argument));
}

} // namespace gridforge::driver
