#pragma once

#include "core/foundation/hashing.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace loadwarden {

// How much harm a command can do; among equal scores the lower risk comes first.
enum class PaletteRisk { navigate, show, reversible, destructive };

// One command of the palette: a verb acting on a target.
struct PaletteEntry {
    std::string id; // a prefix and a subject: "tab:processes", "quit:app:/Applications/Mail.app"
    std::string
        verb; // "Go to ", "Show", "Pause", "Resume", "Remove Limit on", "Quit", "Force Quit"
    std::string target; // a tab or app name; may be empty
    std::string detail; // a secondary line; for an app it includes its pid
    PaletteRisk risk = PaletteRisk::navigate;
    double weight = 0.0; // preference among equals, higher first

    // The verb and the target as one line of text.
    std::string phrase() const;

    bool operator==(const PaletteEntry&) const = default;
    auto fields() const { return std::tie(id, verb, target, detail, risk, weight); }
};

namespace FuzzyMatch {

// Rewards matches at the start of the text, at word starts, at camel-case
// humps and in runs; absent when the query's letters do not all appear in
// order. Strict matching also rejects letters scattered across the text.
std::optional<int> score(std::string_view query, std::string_view text, bool strict);

} // namespace FuzzyMatch

namespace PaletteRanker {

// Absent when the entry does not match; 0 for every entry on an empty query.
std::optional<int> score(std::string_view query, const PaletteEntry& entry);

// The matching entries in display order, at most maxCount of them.
std::vector<PaletteEntry> rank(const std::vector<PaletteEntry>& entries, std::string_view query,
                               std::size_t maxCount);

} // namespace PaletteRanker

} // namespace loadwarden
