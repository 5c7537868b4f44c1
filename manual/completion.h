// The completion of the command line for bash and zsh: flags by the operation, files by the kind of a flag's value.
#pragma once

#include <ostream>

namespace gridforge {

void writeBashCompletion(std::ostream& file);
void writeZshCompletion(std::ostream& file);

} // namespace gridforge
