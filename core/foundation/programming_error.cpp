#include "core/foundation/programming_error.h"

#include <cstdio>
#include <cstdlib>

namespace loadwarden {

void programmingError(std::string_view message, SourcePlace where) {
    std::fprintf(stderr, "loadwarden: %.*s at %s:%u (%s)\n", static_cast<int>(message.size()),
                 message.data(), where.file, where.line, where.function);
    std::abort();
}

} // namespace loadwarden
