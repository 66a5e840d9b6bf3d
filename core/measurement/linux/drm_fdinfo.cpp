#include "core/measurement/linux/drm_fdinfo.h"

#include "core/foundation/checked_arithmetic.h"
#include "core/text/text_parsing.h"

#include <algorithm>

namespace loadwarden {

namespace {

// "9288864723 ns" or "7655183225": the number before an optional unit.
std::optional<std::uint64_t> leadingNumber(std::string_view value) {
    return parseInteger<std::uint64_t>(value.substr(0, value.find(' ')));
}

// The keys that describe one engine class, named after their prefix; the
// longer prefix of two that share a start comes first.
struct EngineKey {
    std::string_view prefix;
    void (*set)(DrmClient::Engine& engine, std::string_view value);
};
constexpr EngineKey engineKeys[] = {
    {"drm-engine-capacity-",
     [](DrmClient::Engine& engine, std::string_view value) {
         engine.capacity = leadingNumber(value).value_or(1);
     }},
    {"drm-engine-", [](DrmClient::Engine& engine,
                       std::string_view value) { engine.busy = leadingNumber(value).value_or(0); }},
    {"drm-total-cycles-", [](DrmClient::Engine& engine,
                             std::string_view value) { engine.clock = leadingNumber(value); }},
    {"drm-cycles-", [](DrmClient::Engine& engine,
                       std::string_view value) { engine.busy = leadingNumber(value).value_or(0); }},
};

void readEngineKey(DrmClient& client, std::string_view key, std::string_view value) {
    for (const auto& [prefix, set] : engineKeys) {
        if (key.size() > prefix.size() && key.starts_with(prefix)) {
            set(client.engines[std::string(key.substr(prefix.size()))], value);
            return;
        }
    }
}

const DrmClient* matching(const std::vector<DrmClient>& clients, const DrmClient& client) {
    const auto found = std::ranges::find_if(clients, [&client](const DrmClient& other) {
        return other.id == client.id && other.device == client.device;
    });
    return found == clients.end() ? nullptr : &*found;
}

// The share of its time that one engine class spent on a client between two
// readings, over all the engines of the class.
double engineShare(const DrmClient::Engine& before, const DrmClient::Engine& now,
                   double elapsedNs) {
    const double span = now.clock && before.clock
                            ? static_cast<double>(counterDelta(*before.clock, *now.clock))
                            : elapsedNs;
    if (!(span > 0.0)) {
        return 0.0;
    }
    const double busy = static_cast<double>(counterDelta(before.busy, now.busy));
    return busy / span / static_cast<double>(std::max<std::uint64_t>(now.capacity, 1));
}

} // namespace

std::optional<DrmClient> parseDrmFdinfo(std::string_view text) {
    DrmClient client;
    std::string driver;
    bool hasID = false;
    forEachLine(text, [&](std::string_view line) {
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos) {
            return;
        }
        const std::string_view key = trimWhitespace(line.substr(0, colon));
        const std::string_view value = trimWhitespace(line.substr(colon + 1));
        if (key == "drm-driver") {
            driver = value;
        } else if (key == "drm-pdev") {
            client.device = value;
        } else if (key == "drm-client-id") {
            if (const auto id = parseInteger<std::uint64_t>(value)) {
                client.id = *id;
                hasID = true;
            }
        } else {
            readEngineKey(client, key, value);
        }
    });
    if (!hasID) {
        return std::nullopt;
    }
    if (client.device.empty()) {
        client.device = driver;
    }
    return client;
}

std::map<std::string, double> drmBusyByDevice(const std::vector<DrmClient>& previous,
                                              const std::vector<DrmClient>& current,
                                              double elapsedSeconds) {
    std::map<std::string, std::map<std::string, double, std::less<>>> shares;
    std::map<std::string, double> busy;
    for (const DrmClient& client : current) {
        busy.try_emplace(client.device, 0.0);
        const DrmClient* before = matching(previous, client);
        if (before == nullptr) {
            continue;
        }
        for (const auto& [name, engine] : client.engines) {
            if (const auto earlier = before->engines.find(name); earlier != before->engines.end()) {
                shares[client.device][name] +=
                    engineShare(earlier->second, engine, elapsedSeconds * 1e9);
            }
        }
    }
    for (const auto& [device, byEngine] : shares) {
        for (const auto& [_, share] : byEngine) {
            busy[device] = std::max(busy[device], std::clamp(share, 0.0, 1.0));
        }
    }
    return busy;
}

} // namespace loadwarden
