#include "core/foundation/kept_aside.h"

#include "core/foundation/calendar.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <optional>
#include <set>
#include <utility>

namespace loadwarden {

namespace {

constexpr std::string_view stampShape = "0000-00-00T000000Z";

std::string stamp(Date date) {
    const Date second = std::floor(date);
    const CalendarDay day = Calendar::fixedOffset(0).day(second);
    const auto ofDay = static_cast<long>(second - std::floor(second / 86400.0) * 86400.0);
    char text[40];
    std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02ld%02ld%02ldZ", day.year, day.month,
                  day.day, ofDay / 3600, ofDay / 60 % 60, ofDay % 60);
    return text;
}

bool isStamp(std::string_view text) {
    return text.size() == stampShape.size() &&
           std::equal(text.begin(), text.end(), stampShape.begin(), [](char found, char shape) {
               return shape == '0' ? std::isdigit(static_cast<unsigned char>(found)) != 0
                                   : found == shape;
           });
}

// When a kept copy was made: its date, then its number within that second.
using Order = std::pair<std::string, unsigned>;

std::optional<Order> orderOf(std::string_view name, std::string_view head, std::string_view tail) {
    if (name.size() < head.size() + stampShape.size() + tail.size() || !name.starts_with(head) ||
        !name.ends_with(tail)) {
        return std::nullopt;
    }
    name.remove_prefix(head.size());
    name.remove_suffix(tail.size());
    const std::string_view when = name.substr(0, stampShape.size());
    const std::string_view number = name.substr(stampShape.size());
    if (!isStamp(when)) {
        return std::nullopt;
    }
    if (number.empty()) {
        return Order{std::string(when), 1};
    }
    unsigned count = 0;
    const auto [end, error] =
        std::from_chars(number.data() + 1, number.data() + number.size(), count);
    if (number[0] != '-' || error != std::errc() || end != number.data() + number.size() ||
        count < 2) {
        return std::nullopt;
    }
    return Order{std::string(when), count};
}

} // namespace

KeptAside KeptAside::file(std::string_view name) {
    const auto dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) {
        return KeptAside(std::string(name) + "-", "");
    }
    return KeptAside(std::string(name.substr(0, dot)) + "-", std::string(name.substr(dot)));
}

KeptAside KeptAside::key(std::string_view key) {
    return KeptAside(std::string(key) + ".unreadable-", "");
}

KeptAside::Plan KeptAside::plan(Date date, const std::vector<std::string>& existing) const {
    const std::string when = stamp(date);
    const std::set<std::string> taken(existing.begin(), existing.end());
    Plan plan;
    unsigned number = 1;
    do {
        plan.name = head_ + when + (number > 1 ? "-" + std::to_string(number) : "") + tail_;
        ++number;
    } while (taken.contains(plan.name));

    std::vector<std::pair<Order, std::string>> older;
    for (const std::string& name : existing) {
        if (const auto order = orderOf(name, head_, tail_)) {
            older.emplace_back(*order, name);
        }
    }
    std::sort(older.begin(), older.end());
    const std::size_t room = keptCopies - 1; // beside the new copy
    for (std::size_t i = 0; i + room < older.size(); ++i) {
        plan.dropped.push_back(older[i].second);
    }
    return plan;
}

} // namespace loadwarden
