#include "core/network/linux/socket_stats.h"

#include "core/text/text_parsing.h"

#include <algorithm>
#include <optional>

namespace loadwarden::SocketStats {

namespace {

constexpr std::string_view inodeStart = " ino:";

std::vector<std::string_view> words(std::string_view line) {
    std::vector<std::string_view> found;
    for (std::string_view piece : splitKeepingEmpty(line, ' ')) {
        piece = trimWhitespace(piece);
        if (!piece.empty()) {
            found.push_back(piece);
        }
    }
    return found;
}

// Consumes `prefix` from the front of `text`.
bool take(std::string_view& text, std::string_view prefix) {
    if (!text.starts_with(prefix)) {
        return false;
    }
    text.remove_prefix(prefix.size());
    return true;
}

// Consumes the leading digits of `text` as an integer.
template <typename T>
std::optional<T> takeNumber(std::string_view& text) {
    const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    const auto number = parseInteger<T>(text.substr(0, digits));
    text.remove_prefix(digits);
    return number;
}

// "ESTAB 0 0 127.0.0.1:5555 127.0.0.1:36474 timer:(…) uid:1000 ino:4242 sk:…";
// a leading "tcp" column appears when ss lists several kinds of socket.
std::optional<SocketBytes> parseSocketLine(std::string_view line,
                                           const SocketOwnersByInode& owners) {
    const std::vector<std::string_view> columns = words(line);
    const std::size_t first = !columns.empty() && columns[0] == "tcp" ? 1 : 0;
    if (columns.size() < first + 5) {
        return std::nullopt;
    }
    const std::string_view peer = columns[first + 4];
    std::string_view rest =
        line.substr(static_cast<std::size_t>(peer.data() - line.data()) + peer.size());
    const std::size_t inodeAt = rest.find(inodeStart);
    if (inodeAt == std::string_view::npos) {
        return std::nullopt;
    }
    rest.remove_prefix(inodeAt + inodeStart.size());
    const auto inode = takeNumber<std::uint64_t>(rest);
    const auto held = inode ? owners.find(*inode) : owners.end();
    if (held == owners.end() || held->second.empty()) {
        return std::nullopt;
    }
    return SocketBytes{.local = std::string(columns[first + 3]),
                       .peer = std::string(peer),
                       .owners = held->second};
}

// The indented detail line; ss leaves out counters that are zero. Data sent
// counts once however often it was retransmitted, and only once the peer
// acknowledged it. The acknowledged count alone would not do: it also covers
// the sequence numbers of the handshake and the closing.
bool readCounters(std::string_view line, SocketBytes& socket) {
    std::uint64_t acknowledged = 0;
    std::uint64_t sent = 0;
    std::uint64_t retransmitted = 0;
    for (std::string_view word : words(line)) {
        std::uint64_t* counter = nullptr;
        if (take(word, "bytes_received:")) {
            counter = &socket.bytesIn;
        } else if (take(word, "bytes_acked:")) {
            counter = &acknowledged;
        } else if (take(word, "bytes_sent:")) {
            counter = &sent;
        } else if (take(word, "bytes_retrans:")) {
            counter = &retransmitted;
        } else {
            continue;
        }
        const auto value = parseInteger<std::uint64_t>(word);
        if (!value) {
            return false;
        }
        *counter = *value;
    }
    socket.bytesOut = std::min(acknowledged, sent - std::min(retransmitted, sent));
    return true;
}

bool isIndented(std::string_view line) {
    return !line.empty() && (line[0] == ' ' || line[0] == '\t');
}

} // namespace

std::vector<SocketBytes> parse(std::string_view output, const SocketOwnersByInode& owners) {
    // An unfinished last line could hold a cut-off counter.
    output = output.substr(0, output.rfind('\n') + 1);
    std::vector<SocketBytes> sockets;
    std::optional<SocketBytes> awaitingCounters;
    forEachLine(output, [&](std::string_view line) {
        if (!isIndented(line)) {
            // A socket without its detail line is dropped with it.
            awaitingCounters = parseSocketLine(line, owners);
            return;
        }
        if (awaitingCounters && readCounters(line, *awaitingCounters)) {
            sockets.push_back(std::move(*awaitingCounters));
        }
        awaitingCounters.reset();
    });
    return sockets;
}

} // namespace loadwarden::SocketStats
