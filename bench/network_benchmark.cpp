#include "core/network/linux/socket_stats.h"
#include "core/network/linux/tcp_socket_ledger.h"

#include <benchmark/benchmark.h>
#include <string>

namespace loadwarden {
namespace {

// A busy desktop: a few thousand connections spread over a few hundred
// processes, as ss prints them, and who holds each.
constexpr std::uint64_t firstInode = 500000;

SocketOwnersByInode socketOwners(int sockets) {
    SocketOwnersByInode owners;
    for (int index = 0; index < sockets; ++index) {
        owners[firstInode + static_cast<std::uint64_t>(index)] = {{1000 + index % 300, "browser"}};
    }
    return owners;
}

std::string socketListing(int sockets, std::uint64_t growth) {
    std::string listing;
    for (int index = 0; index < sockets; ++index) {
        listing += "ESTAB 0      0      192.168.1.20:" + std::to_string(40000 + index) +
                   " 93.184.216.34:443 ino:" +
                   std::to_string(firstInode + static_cast<std::uint64_t>(index)) +
                   " sk:" + std::to_string(index) + " cgroup:/user.slice <->\n";
        const std::uint64_t bytes = 100000 + index * 17 + growth;
        listing += "\t cubic wscale:7,7 rto:204 rtt:12.5/3 mss:1448 cwnd:10 bytes_sent:" +
                   std::to_string(bytes) + " bytes_acked:" + std::to_string(bytes + 1) +
                   " bytes_received:" + std::to_string(bytes * 3) +
                   " segs_out:80 segs_in:120 send 9.3Mbps lastsnd:40 rcv_space:14600\n";
    }
    return listing;
}

// One Linux network run's own processing: parse the listing, account the
// growth of every socket.
void BM_SocketListingToSample(benchmark::State& state) {
    const int sockets = static_cast<int>(state.range(0));
    const std::string first = socketListing(sockets, 0);
    const std::string second = socketListing(sockets, 4096);
    const SocketOwnersByInode owners = socketOwners(sockets);
    TcpSocketLedger ledger;
    ledger.record(SocketStats::parse(first, owners));
    bool alternate = false;
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            ledger.record(SocketStats::parse(alternate ? first : second, owners)));
        alternate = !alternate;
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * second.size()));
}
BENCHMARK(BM_SocketListingToSample)->Arg(500)->Arg(5000)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace loadwarden
