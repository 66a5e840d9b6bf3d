#include "core/control/action_text.h"
#include "core/details/process_details.h"

#include <gtest/gtest.h>

namespace loadwarden {

namespace {

LiveProcess processIn(RunState state, Architecture arch = Architecture::x86_64) {
    return {.record = {.pid = 42, .name = "encoder", .state = state, .arch = arch}};
}

} // namespace

TEST(ProcessDetailsTest, AHeldProcessSaysHowItIsHeld) {
    EXPECT_EQ(factText(ProcessFact::state, processIn(RunState::sleeping), {}), "Sleeping");
    EXPECT_EQ(factText(ProcessFact::state, processIn(RunState::stopped), {}), "Paused");
    // A limit stops and continues its processes in turn: caught stopped, it is still limited.
    const ProcessExtras limited{.limit = 30.0};
    EXPECT_EQ(factText(ProcessFact::state, processIn(RunState::stopped), limited), "Limited 30%");
    EXPECT_EQ(factText(ProcessFact::state, processIn(RunState::running), limited), "Limited 30%");
}

TEST(ProcessDetailsTest, ArchitectureIsNamedAsPeopleReadIt) {
    const auto words = [](Architecture arch) {
        return factText(ProcessFact::architecture, processIn(RunState::running, arch), {});
    };
    EXPECT_EQ(words(Architecture::x86_64), "x86-64");
    EXPECT_EQ(words(Architecture::arm64), "ARM64");
    EXPECT_EQ(words(Architecture::appleSilicon), "Apple silicon");
    EXPECT_EQ(words(Architecture::rosetta), "Intel (Rosetta)");
    EXPECT_EQ(words(Architecture::unknown), "-");
}

TEST(ActionTextTest, TheMeterSaysWhatIsHeld) {
    EXPECT_EQ(ActionText::heldSummary(0, 0), "");
    EXPECT_EQ(ActionText::heldSummary(1, 0), "1 app paused");
    EXPECT_EQ(ActionText::heldSummary(0, 2), "2 apps limited");
    EXPECT_EQ(ActionText::heldSummary(3, 1), "3 apps paused · 1 limited");
}

} // namespace loadwarden
