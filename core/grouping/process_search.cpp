#include "core/grouping/process_grouper.h"
#include "core/text/case_folding.h"

#include <algorithm>
#include <string>

namespace loadwarden {

namespace {

using Terms = std::vector<std::string>;

bool containsAll(std::string_view text, const Terms& terms) {
    return std::all_of(terms.begin(), terms.end(), [text](const std::string& term) {
        return text.find(term) != std::string_view::npos;
    });
}

std::string memberText(const LiveProcess& member) {
    return member.record.name + ' ' + std::to_string(member.record.pid);
}

bool matches(const ProcessGroup& group, const Terms& terms) {
    std::string text = group.name;
    for (const LiveProcess& member : group.members) {
        text += ' ';
        text += memberText(member);
    }
    return containsAll(lowercased(text), terms);
}

std::vector<LiveProcess> visible(const ProcessGroup& group, const Terms& terms) {
    if (terms.empty() || containsAll(lowercased(group.name), terms)) {
        return group.members;
    }
    std::vector<LiveProcess> shown;
    for (const LiveProcess& member : group.members) {
        if (containsAll(lowercased(memberText(member)), terms)) {
            shown.push_back(member);
        }
    }
    return shown;
}

} // namespace

std::vector<std::string> ProcessGrouper::searchTerms(std::string_view query) {
    const std::string folded = lowercased(query);
    Terms terms;
    std::size_t start = 0;
    while (start <= folded.size()) {
        std::size_t end = folded.find(' ', start);
        if (end == std::string::npos) {
            end = folded.size();
        }
        if (end > start) {
            terms.push_back(folded.substr(start, end - start));
        }
        start = end + 1;
    }
    return terms;
}

std::vector<ProcessGroup> ProcessGrouper::filter(const std::vector<ProcessGroup>& groups,
                                                 std::string_view query) {
    const Terms terms = searchTerms(query);
    if (terms.empty()) {
        return groups;
    }
    std::vector<ProcessGroup> kept;
    std::copy_if(groups.begin(), groups.end(), std::back_inserter(kept),
                 [&terms](const ProcessGroup& group) { return matches(group, terms); });
    return kept;
}

std::vector<LiveProcess> ProcessGrouper::visibleMembers(const ProcessGroup& group,
                                                        std::string_view query) {
    return visible(group, searchTerms(query));
}

std::optional<std::string> ProcessGrouper::firstMatchKey(const std::vector<ProcessGroup>& groups,
                                                         std::string_view query) {
    const Terms terms = searchTerms(query);
    if (terms.empty()) {
        return std::nullopt;
    }
    const auto first =
        std::find_if(groups.begin(), groups.end(),
                     [&terms](const ProcessGroup& group) { return matches(group, terms); });
    if (first == groups.end()) {
        return std::nullopt;
    }
    const std::vector<LiveProcess> shown = visible(*first, terms);
    if (shown.empty()) {
        return first->id;
    }
    return "m:" + std::to_string(shown.front().record.pid);
}

} // namespace loadwarden
