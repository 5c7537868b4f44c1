#include "run/legend.h"

#include "host/console.h"
#include "host/units.h"

namespace gridforge::run {

void writeSourceLegend(std::string_view name, const InputFileList& inputs)
{
    say("Writing legend for source file to: ", name);
    Unit unit = 0;
    OPENER(unit, "O ", name);
    writeLine(unit, "\"Value in Grid\",\"Source Grid File\"");
    for (std::int32_t i = 1; i <= inputs.count(); ++i) {
        writeLine(unit, join(i, ',', inputs[i]));
    }
    CLOSER(unit);
}

} // namespace gridforge::run
