#include "core/diagnosis/palette.h"

#include "core/text/case_folding.h"
#include "core/text/text_parsing.h"

#include <algorithm>
#include <numeric>
#include <set>
#include <utility>

namespace loadwarden {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Characters, not bytes, so that "über" and "Übersicht" compare letter by letter.
std::size_t characterCount(std::string_view text) {
    return codePoints(text).size();
}

bool isWordBreak(char32_t c) {
    return c == U' ' || c == U'-' || c == U'.';
}

std::vector<std::string_view> splitAt(std::string_view text, std::string_view separators) {
    std::vector<std::string_view> pieces;
    std::size_t start = 0;
    while (start <= text.size()) {
        const std::size_t end = std::min(text.find_first_of(separators, start), text.size());
        if (end > start) {
            pieces.push_back(text.substr(start, end - start));
        }
        start = end + 1;
    }
    return pieces;
}

// Query words found, in order, at the starts of the phrase's words.
std::optional<int> wordMatch(const std::vector<std::string_view>& queryWords,
                             std::string_view phrase) {
    const std::string lowerPhrase = lowercased(phrase);
    const auto phraseWords = splitAt(lowerPhrase, " -.(");
    std::size_t next = 0;
    int sum = 0;
    for (const std::string_view word : queryWords) {
        while (next < phraseWords.size() && !phraseWords[next].starts_with(word)) {
            ++next;
        }
        if (next == phraseWords.size()) {
            return std::nullopt;
        }
        sum += 4 * static_cast<int>(characterCount(word)) + (phraseWords[next] == word ? 6 : 0) -
               static_cast<int>(next);
        ++next;
    }
    return sum;
}

} // namespace

std::string PaletteEntry::phrase() const {
    return target.empty() ? verb : verb + " " + target;
}

std::optional<int> FuzzyMatch::score(std::string_view query, std::string_view text, bool strict) {
    std::u32string q = codePoints(lowercased(query));
    std::erase(q, U' ');
    if (q.empty()) {
        return 0;
    }
    const std::u32string original = codePoints(text);
    std::u32string t = original;
    std::transform(t.begin(), t.end(), t.begin(), [](char32_t c) { return lowercased(c); });
    std::size_t j = 0;
    int run = 0;
    int scattered = 0;
    int sum = 0;
    char32_t previous = U' ';
    for (std::size_t i = 0; i < t.size() && j < q.size(); ++i) {
        if (t[i] == q[j]) {
            const bool hump = i > 0 && isUppercase(original[i]) && isLowercase(original[i - 1]);
            const int bonus = (i == 0 ? 9 : isWordBreak(previous) ? 7 : 1) + (hump ? 3 : 0);
            const bool continuesRun = run > 0;
            ++run;
            sum += bonus + 2 * run;
            if (i > 0 && !isWordBreak(previous) && previous != U'_' && !hump && !continuesRun) {
                ++scattered;
            }
            ++j;
        } else {
            run = 0;
        }
        previous = t[i];
    }
    if (j < q.size()) {
        return std::nullopt;
    }
    const auto length = static_cast<int>(q.size());
    if (strict && scattered > (length < 6 ? 2 : length / 3)) {
        return std::nullopt;
    }
    return sum - std::max(static_cast<int>(t.size()) - length, 0) / 4;
}

std::optional<int> PaletteRanker::score(std::string_view query, const PaletteEntry& entry) {
    const std::string lowerQuery = lowercased(trimWhitespace(query));
    if (lowerQuery.empty()) {
        return 0;
    }
    const auto words = splitAt(lowerQuery, " ");
    std::optional<int> best;
    const auto consider = [&best](std::optional<int> candidate, int offset) {
        if (candidate && (!best || *candidate + offset > *best)) {
            best = *candidate + offset;
        }
    };
    consider(wordMatch(words, entry.phrase()), 200);
    const std::string_view subject = entry.target.empty() ? entry.verb : entry.target;
    consider(FuzzyMatch::score(lowerQuery, subject, true), 100);
    // "pause saf": the first word names the verb, the rest the target.
    if (!entry.target.empty() && words.size() >= 2 &&
        lowercased(entry.verb).starts_with(words.front())) {
        const std::string rest = std::accumulate(words.begin() + 1, words.end(), std::string(),
                                                 [](std::string joined, std::string_view word) {
                                                     return std::move(joined) + std::string(word);
                                                 });
        consider(FuzzyMatch::score(rest, entry.target, true), 150);
    }
    // A number finds an app by its pid.
    if (words.size() == 1 && std::all_of(lowerQuery.begin(), lowerQuery.end(), isDigit) &&
        entry.detail.find(lowerQuery) != std::string::npos) {
        consider(0, 180);
    }
    return best;
}

std::vector<PaletteEntry> PaletteRanker::rank(const std::vector<PaletteEntry>& entries,
                                              std::string_view query, std::size_t maxCount) {
    struct Scored {
        const PaletteEntry* entry;
        int score;
    };
    std::vector<Scored> scored;
    std::set<std::pair<std::string, std::string>> seen;
    for (const PaletteEntry& entry : entries) {
        // The same command listed twice is shown once, as first listed.
        if (!seen.emplace(entry.phrase(), entry.detail).second) {
            continue;
        }
        if (const auto value = score(query, entry)) {
            scored.push_back({&entry, *value});
        }
    }
    std::stable_sort(scored.begin(), scored.end(), [](const Scored& a, const Scored& b) {
        if (a.score != b.score) {
            return a.score > b.score;
        }
        if (a.entry->risk != b.entry->risk) {
            return a.entry->risk < b.entry->risk;
        }
        return a.entry->weight > b.entry->weight;
    });
    std::vector<PaletteEntry> ranked;
    for (std::size_t i = 0; i < scored.size() && i < maxCount; ++i) {
        ranked.push_back(*scored[i].entry);
    }
    return ranked;
}

} // namespace loadwarden
