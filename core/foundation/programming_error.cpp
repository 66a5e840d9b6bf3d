#include "core/foundation/programming_error.h"

#include <cstdio>
#include <cstdlib>

namespace loadwarden {

void programmingError(std::string_view message, std::source_location where) {
    std::fprintf(stderr, "loadwarden: %.*s at %s:%u (%s)\n", static_cast<int>(message.size()),
                 message.data(), where.file_name(), static_cast<unsigned>(where.line()),
                 where.function_name());
    std::abort();
}

} // namespace loadwarden
