#pragma once

#include "core/foundation/date.h"
#include "core/foundation/hashing.h"

#include <optional>
#include <tuple>

namespace loadwarden {

// Every cadence of the refresh loop and the network monitor, from what the
// user sees and the interval setting. Sample often while watched, rarely while
// only the menu bar meter needs figures.
struct SamplingPlan {
    static constexpr Seconds maximumNetworkInterval = 600.0;
    static constexpr Seconds leastShownNetworkInterval = 6.0;

    bool windowVisible = false;
    bool networkShown = false;
    Seconds interval = 2.0;

    Seconds tickInterval() const;
    Seconds processInterval() const;
    // Whether this tick reads processes too, or only the system figures.
    bool isFullSampleDue(std::optional<Date> last, Date now) const;

    Seconds networkInterval() const;
    // factor: the network monitor's back-off, at least 1.
    Seconds networkInterval(double factor) const;
    Seconds networkStaleAfter(double factor) const;

    bool operator==(const SamplingPlan&) const = default;
    auto fields() const { return std::tie(windowVisible, networkShown, interval); }
};

} // namespace loadwarden
