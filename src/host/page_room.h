// Where the pages of large arrays find room: in memory, and where that is used up in files.
#pragma once

#include <cstddef>
#include <string>

namespace gridforge::inline host {

// Zeroed bytes, null where there is none of that kind.
struct PageRoom {
    void* (*inMemory)(std::size_t bytes);
    void* (*inFile)(const std::string& folder, std::size_t bytes); // in a file in that folder
};

// The kind that should hold them, else the other one; null if neither can. Count them out when they are released.
void* takeRoomForPages(const PageRoom& room, std::size_t bytes);
void countOutPages(std::size_t bytes);

} // namespace gridforge::inline host
