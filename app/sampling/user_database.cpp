#include "app/sampling/user_database.h"

#include <cerrno>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace loadwarden {

std::optional<std::string> passwordDatabaseName(std::uint32_t uid) {
    const long suggested = sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(suggested > 0 ? static_cast<std::size_t>(suggested) : 4096);
    passwd entry{};
    passwd* found = nullptr;
    while (true) {
        const int error =
            getpwuid_r(static_cast<uid_t>(uid), &entry, buffer.data(), buffer.size(), &found);
        if (error == ERANGE && buffer.size() < (1u << 20)) {
            buffer.resize(buffer.size() * 2);
            continue;
        }
        if (error != 0 || found == nullptr || found->pw_name == nullptr) {
            return std::nullopt;
        }
        return std::string(found->pw_name);
    }
}

} // namespace loadwarden
