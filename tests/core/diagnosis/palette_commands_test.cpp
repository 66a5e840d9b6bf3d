#include "core/diagnosis/palette_commands.h"
#include "tests/core/grouping/process_fixtures.h"

#include <gtest/gtest.h>

namespace loadwarden {
namespace {

using namespace fixtures;

std::vector<std::string> phrasesFor(const std::vector<PaletteEntry>& entries,
                                    const std::string& groupID) {
    std::vector<std::string> phrases;
    for (const PaletteEntry& entry : entries) {
        const auto command = PaletteCommands::command(entry);
        if (command && command->subject == groupID) {
            phrases.push_back(entry.phrase());
        }
    }
    return phrases;
}

TEST(PaletteCommands, OfferWhatThePolicyAllowsAndNothingOnTheProgramItself) {
    ProcessGroup safari = groupOf({process(10, "Safari")}, GroupKind::app);
    ProcessGroup paused = groupOf({process(20, "encoder")});
    paused.members[0].record.state = RunState::stopped;
    paused.leader = paused.members[0];
    ProcessGroup self = groupOf({process(30, "Loadwarden")}, GroupKind::app);
    self.isSelf = true;
    const ProcessGroup limited = groupOf({process(40, "render")});
    const ProcessGroup kernel = groupOf({rootProcess(50, "kworker")}, GroupKind::system);

    const auto entries = PaletteCommands::entries({safari, paused, self, limited, kernel},
                                                  {{limited.id, 25.0}}, {"Settings…"});
    EXPECT_EQ(phrasesFor(entries, safari.id),
              (std::vector<std::string>{"Show Safari", "Pause Safari", "Quit Safari",
                                        "Force Quit Safari"}));
    EXPECT_EQ(phrasesFor(entries, paused.id),
              (std::vector<std::string>{"Show encoder", "Resume encoder", "Quit encoder",
                                        "Force Quit encoder"}));
    EXPECT_EQ(phrasesFor(entries, self.id), std::vector<std::string>{"Show Loadwarden"});
    // A limited group is stopped and continued all the time: it is never offered a resume.
    EXPECT_EQ(phrasesFor(entries, limited.id),
              (std::vector<std::string>{"Show render", "Pause render", "Remove Limit on render",
                                        "Quit render", "Force Quit render"}));
    EXPECT_TRUE(phrasesFor(entries, kernel.id).empty());
    EXPECT_EQ(phrasesFor(entries, "details"), std::vector<std::string>{"Go to  Details"});
    EXPECT_EQ(phrasesFor(entries, "Settings…"), std::vector<std::string>{"Settings…"});
}

TEST(PaletteCommands, ATypedVerbAndFragmentFindTheSafeCommandFirst) {
    const ProcessGroup safari = groupOf({process(10, "Safari")}, GroupKind::app);
    const auto entries = PaletteCommands::entries({safari}, {}, {});
    const auto ranked = PaletteRanker::rank(entries, "pause saf", 3);
    ASSERT_FALSE(ranked.empty());
    EXPECT_EQ(ranked.front().phrase(), "Pause Safari");
    EXPECT_EQ(PaletteCommands::command(ranked.front()),
              (PaletteCommands::Command{PaletteCommands::Verb::pause, safari.id}));
}

} // namespace
} // namespace loadwarden
