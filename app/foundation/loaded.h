#pragma once

#include <optional>
#include <string>

namespace loadwarden {

// What a store read at start, and what the user should know about it: that
// what was stored could not be read and where it was kept aside.
template <typename Value>
struct Loaded {
    Value value;
    std::optional<std::string> note; // a plain sentence
};

} // namespace loadwarden
