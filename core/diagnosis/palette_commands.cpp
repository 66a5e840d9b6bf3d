#include "core/diagnosis/palette_commands.h"

#include "core/control/process_policy.h"
#include "core/model/window_state.h"
#include "core/text/units_format.h"

#include <array>

namespace loadwarden::PaletteCommands {

namespace {

struct VerbInfo {
    Verb verb;
    std::string_view prefix; // of the id
    std::string_view words;
    PaletteRisk risk;
};

constexpr std::array<VerbInfo, 8> verbs{{
    {Verb::goTo, "tab:", "Go to ", PaletteRisk::navigate},
    {Verb::show, "show:", "Show", PaletteRisk::show},
    {Verb::pause, "pause:", "Pause", PaletteRisk::reversible},
    {Verb::resume, "resume:", "Resume", PaletteRisk::reversible},
    {Verb::removeLimit, "unlimit:", "Remove Limit on", PaletteRisk::reversible},
    {Verb::quit, "quit:", "Quit", PaletteRisk::destructive},
    {Verb::forceQuit, "forceQuit:", "Force Quit", PaletteRisk::destructive},
    {Verb::runMenuCommand, "menu:", "", PaletteRisk::show},
}};

const VerbInfo& info(Verb verb) {
    return verbs[static_cast<std::size_t>(verb)];
}

PaletteEntry entry(Verb verb, const std::string& subject, std::string target, std::string detail,
                   double weight) {
    const VerbInfo& about = info(verb);
    return {.id = std::string(about.prefix) + subject,
            .verb = std::string(about.words),
            .target = std::move(target),
            .detail = std::move(detail),
            .risk = about.risk,
            .weight = weight};
}

std::string appDetail(const ProcessGroup& group) {
    return "pid " + std::to_string(group.leader.record.pid) + " · " +
           formatPercent(group.totalCPU()) + " CPU · " + formatBytes(group.totalMemory());
}

} // namespace

std::vector<PaletteEntry> entries(const std::vector<ProcessGroup>& groups,
                                  const std::map<std::string, double>& limits,
                                  const std::vector<std::string>& menuCommands) {
    std::vector<PaletteEntry> result;
    for (const Tab tab : allTabs) {
        result.push_back(
            entry(Verb::goTo, std::string(rawValue(tab)), std::string(title(tab)), "", 0.0));
    }
    // A menu command's title is its verb; it acts on nothing named.
    for (const std::string& title : menuCommands) {
        PaletteEntry command = entry(Verb::runMenuCommand, title, "", "", 0.0);
        command.verb = title;
        result.push_back(std::move(command));
    }
    for (const ProcessGroup& group : groups) {
        if (group.kind == GroupKind::system) {
            continue;
        }
        const bool limited = limits.contains(group.id);
        const std::string detail = appDetail(group);
        const double weight = group.totalCPU();
        result.push_back(entry(Verb::show, group.id, group.name, detail, weight));
        const auto offer = [&](ProcessAction action, Verb verb) {
            if (ProcessPolicy::offers(action, group, limited)) {
                result.push_back(entry(verb, group.id, group.name, detail, weight));
            }
        };
        offer(ProcessAction::pause, Verb::pause);
        offer(ProcessAction::resume, Verb::resume);
        if (limited) {
            result.push_back(entry(Verb::removeLimit, group.id, group.name, detail, weight));
        }
        offer(ProcessAction::quit, Verb::quit);
        offer(ProcessAction::forceQuit, Verb::forceQuit);
    }
    return result;
}

std::optional<Command> command(const PaletteEntry& entry) {
    for (const VerbInfo& about : verbs) {
        if (entry.id.starts_with(about.prefix)) {
            return Command{about.verb, entry.id.substr(about.prefix.size())};
        }
    }
    return std::nullopt;
}

std::string_view riskText(PaletteRisk risk) {
    switch (risk) {
    case PaletteRisk::navigate:
        return "";
    case PaletteRisk::show:
        return "";
    case PaletteRisk::reversible:
        return "Can be undone";
    case PaletteRisk::destructive:
        return "Can’t be undone";
    }
    return {};
}

} // namespace loadwarden::PaletteCommands
