#include "host/table_rows.h"

namespace gridforge::inline host {

std::string readHeading(Unit unit, const TableForm& form)
{
    std::string line;
    if (!atEnd(unit) && !readLine(unit, line)) {
        if (form.unreadHeading == UnreadHeading::ends) {
            failLine(form.unreadable, line);
        }
        line.clear();
    }
    return line;
}

bool nextRow(Unit unit, const TableForm& form, std::int64_t rows, std::string& line)
{
    if (atEnd(unit)) {
        return false;
    }
    if (!readLine(unit, line)) {
        failLine(form.unreadable, line);
    }
    if (rows >= form.mostRows) {
        if (form.tooManyAdvice.empty()) {
            fail(form.tooMany);
        }
        say(form.tooMany);
        fail(form.tooManyAdvice);
    }
    return true;
}

} // namespace gridforge::inline host
