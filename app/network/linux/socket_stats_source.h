#pragma once

#include "app/network/linux/socket_owners.h"
#include "app/network/network_source.h"
#include "core/network/linux/tcp_socket_ledger.h"

namespace loadwarden {

// Linux: iproute2's ss lists every TCP socket with its byte counters and
// inode, and the processes that hold each are found among this user's own.
// Only connections that are open when it runs are seen, and no UDP traffic
// at all.
class SocketStatsSource final : public NetworkSource {
public:
    static constexpr std::string_view coverage = "Network: live TCP connections only";

    // ss where iproute2 installs it; nothing when it is missing.
    static std::optional<std::string> locate();

    explicit SocketStatsSource(std::string toolPath);

    std::string toolPath() const override { return toolPath_; }
    std::vector<std::string> arguments() const override;
    std::optional<NetworkSample> sample(std::string_view output) override;
    std::string_view coverageNote() const override { return coverage; }

private:
    std::string toolPath_;
    SocketOwners owners_;
    TcpSocketLedger ledger_;
};

} // namespace loadwarden
