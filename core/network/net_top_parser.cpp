#include "core/network/net_top_parser.h"

#include "core/text/text_parsing.h"

namespace loadwarden {

namespace {

constexpr std::size_t leastRowFields = 4;

bool isBlockHeader(std::string_view line) {
    return line.starts_with("time,") || line.starts_with(",bytes_in");
}

} // namespace

std::vector<NetworkSample> NetTopParser::feed(std::string_view text) {
    buffer_.append(text);
    std::vector<NetworkSample> completed;
    std::string_view unread = buffer_;
    for (std::size_t end = unread.find('\n'); end != std::string_view::npos;
         end = unread.find('\n')) {
        const std::string_view line = unread.substr(0, end);
        unread.remove_prefix(end + 1);
        if (isBlockHeader(line)) {
            if (!pending_.empty()) {
                completed.push_back(std::move(pending_));
            }
            pending_.clear();
        } else if (auto row = parseLine(line)) {
            // A later row for the same process replaces the earlier one.
            pending_.insert_or_assign(row->pid, std::move(*row));
        }
    }
    buffer_.erase(0, buffer_.size() - unread.size());
    return completed;
}

std::optional<NetworkBytes> NetTopParser::parseLine(std::string_view line) {
    const std::vector<std::string_view> fields = splitKeepingEmpty(line, ',');
    if (fields.size() < leastRowFields || fields[0].starts_with("time")) {
        return std::nullopt;
    }
    // Rows start with a time of day when the tool prints one.
    const std::size_t nameIndex = fields[0].find(':') == std::string_view::npos ? 0 : 1;
    const std::string_view nameField = fields[nameIndex];
    const std::size_t dot = nameField.rfind('.');
    if (dot == std::string_view::npos) {
        return std::nullopt;
    }
    const auto pid = parseInteger<std::int32_t>(nameField.substr(dot + 1));
    const auto bytesIn = parseInteger<std::uint64_t>(fields[nameIndex + 1]);
    const auto bytesOut = parseInteger<std::uint64_t>(fields[nameIndex + 2]);
    if (!pid || *pid < 0 || !bytesIn || !bytesOut) {
        return std::nullopt;
    }
    return NetworkBytes{.pid = *pid,
                        .name = std::string(nameField.substr(0, dot)),
                        .bytesIn = *bytesIn,
                        .bytesOut = *bytesOut};
}

} // namespace loadwarden
