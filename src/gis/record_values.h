// The values of a record, one after another.
#pragma once

#include "core/free_form.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace gridforge::gis {

// Takes the values of a record one after another. An empty one leaves its target; one that is missing or cannot be read
// ends the run: with the usual message, or with `unreadable` and the record on the next line. The record must stay.
class RecordValues {
public:
    // An empty value follows a comma at the end: a .dbf with a blank last number gives such records.
    explicit RecordValues(std::string_view record, std::string_view unreadable = {})
        : record_(record), unreadable_(unreadable), values_(record, LastComma::holdsEmpty)
    {
    }

    void take(float& target) { require(values_.take(target)); }
    void take(std::string& target, std::size_t width) { require(values_.take(target, width)); }

private:
    void require(bool taken) const;

    std::string_view record_;
    std::string_view unreadable_;
    FreeForm values_;
};

} // namespace gridforge::gis
