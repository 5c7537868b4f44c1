// What a run leaves that was killed, or whose files were refused at the end: the rules of docs/reliability.md for each file.
// Whether readers take a grid for whole is up to whole_grids.h.
#pragma once

#include "faults/whole_grids.h"

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace gridforge::test {

// Is `name` that of a whole .flt of `finished` that waits for its own name, as m.flt.1234.part for m.flt?
bool isPassingName(const std::string& name, const Files& finished);

// Collects files that runs left, and finds those against the rules: no other files than a finished run has; an .asc or .hdr
// that is not whole is empty or begins with `?`, and has bytes of the finished one or gaps; a .flt is not longer; tables, .mif, .mid
// and .prj begin as the finished ones do, .shp, .shx and .dbf as well, apart from the sizes and the extent in their headers;
// and a .nc that can be read has values of the finished one or missing ones, or in the classic format is cut short.
class FilesLeft {
public:
    FilesLeft(Files before, Files finished);
    // The files after the run of `mission`; `how` describes it in what wrong() returns.
    void add(const Files& files, const std::string& mission, const std::string& how);
    const std::vector<WrongFile>& wrong() const { return wrong_; }

private:
    std::string whatIsWrong(const std::string& name, const std::string& bytes) const;

    Files before_;
    Files finished_;
    std::set<std::pair<std::string, std::string>> seen_; // names and bytes
    std::vector<WrongFile> wrong_;
};

} // namespace gridforge::test
