#include "core/model/menu_bar_state.h"

#include "core/text/case_folding.h"
#include "core/text/units_format.h"

namespace loadwarden {

namespace {

bool isCandidate(const ProcessGroup& group) {
    return group.kind != GroupKind::system && !group.isSelf;
}

// The first `count` code points, never cutting one in half.
std::string prefix(const std::string& text, std::size_t count) {
    std::size_t end = 0;
    for (std::size_t taken = 0; taken < count && end < text.size(); ++taken) {
        nextCodePoint(text, end);
    }
    return text.substr(0, end);
}

} // namespace

MenuBarState MenuBarState::compute(const SystemSample& sample,
                                   const std::vector<ProcessGroup>& groups, bool busy) {
    MenuBarState state{.text = {}, .cpu = formatPercent(sample.cpu() * 100.0), .busy = busy};
    state.text = state.cpu;
    const ProcessGroup* busiest = nullptr;
    for (const ProcessGroup& group : groups) {
        if (isCandidate(group) && (!busiest || group.totalCPU() > busiest->totalCPU())) {
            busiest = &group;
        }
    }
    if (busiest && busiest->totalCPU() >= namedAppPercent) {
        state.text += " · " + prefix(busiest->name, nameLength);
    }
    return state;
}

std::set<std::string> hotGroupKeys(const std::vector<ProcessGroup>& groups, double hotPercent) {
    std::set<std::string> keys;
    for (const ProcessGroup& group : groups) {
        if (isCandidate(group) && group.totalCPU() >= hotPercent) {
            keys.insert(group.id);
        }
    }
    return keys;
}

} // namespace loadwarden
