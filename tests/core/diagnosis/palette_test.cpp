#include "core/diagnosis/palette.h"

#include <gtest/gtest.h>

namespace loadwarden {
namespace {

TEST(FuzzyMatch, RewardsStartsRunsAndHumps) {
    EXPECT_EQ(FuzzyMatch::score("pref", "Preferences", true), 31);
    EXPECT_EQ(FuzzyMatch::score("ph", "appHistory", false), 7);   // the h is a hump
    EXPECT_EQ(FuzzyMatch::score("ph", "apphistory", false), 4);   // here it is scattered
    EXPECT_EQ(FuzzyMatch::score("ah", "App History", false), 18); // both start words
    EXPECT_EQ(FuzzyMatch::score("", "Anything", true), 0);
    EXPECT_EQ(FuzzyMatch::score("a p p", "App", true), FuzzyMatch::score("app", "App", true));
}

TEST(FuzzyMatch, NoMatchWhenLettersAreMissingOrScattered) {
    EXPECT_EQ(FuzzyMatch::score("safarix", "Safari", false), std::nullopt);
    EXPECT_EQ(FuzzyMatch::score("fs", "Safari", false), std::nullopt); // out of order
    EXPECT_EQ(FuzzyMatch::score("ge", "large", true), 8);              // one scattered letter
    // Three letters each landing mid-word after a miss: too scattered for strict.
    EXPECT_TRUE(FuzzyMatch::score("ace", "xaxcxe", false));
    EXPECT_EQ(FuzzyMatch::score("ace", "xaxcxe", true), std::nullopt);
    // Longer queries tolerate a third of their letters scattered.
    EXPECT_TRUE(FuzzyMatch::score("abcdefghi", "xaxbcxdefghi", true));
    EXPECT_EQ(FuzzyMatch::score("abcdefghi", "xaxbxcxdefghi", true), std::nullopt);
    // A letter after an underscore starts a word for the strict test, though
    // it earns no word-start bonus.
    EXPECT_EQ(FuzzyMatch::score("asbl", "at_spi_bus_launcher", true), 17);
}

TEST(FuzzyMatch, LettersBeyondASCIIFoldAndCountAsOneCharacterEach) {
    // 9 + 2, 1 + 4, 1 + 6, 1 + 8, less (19 - 4) / 4 for the rest of the text.
    EXPECT_EQ(FuzzyMatch::score("über", "Übersicht für Ärzte", true), 29);
    EXPECT_EQ(FuzzyMatch::score("ÜBER", "übersicht", true),
              FuzzyMatch::score("über", "Übersicht", true));
    EXPECT_EQ(FuzzyMatch::score("фото", "Фото", true), 32);
    // Humps beyond ASCII: the Ж earns its bonus (11 + 4 + 2, less 7 / 4).
    EXPECT_EQ(FuzzyMatch::score("дж", "ДомЖурнал", false), 16);
}

// What the window offers with Safari and Slack running.
std::vector<PaletteEntry> commands() {
    const auto app = [](std::string verb, std::string name, int pid, PaletteRisk risk) {
        return PaletteEntry{verb + ":" + name, verb, name, "pid " + std::to_string(pid), risk, 1};
    };
    return {
        {"tab:processes", "Go to ", "Processes", "", PaletteRisk::navigate, 5},
        {"tab:performance", "Go to ", "Performance", "", PaletteRisk::navigate, 4},
        {"tab:history", "Go to ", "App history", "", PaletteRisk::navigate, 3},
        {"tab:startup", "Go to ", "Startup apps", "", PaletteRisk::navigate, 2},
        app("Force Quit", "Safari", 4312, PaletteRisk::destructive),
        app("Quit", "Safari", 4312, PaletteRisk::destructive),
        app("Pause", "Safari", 4312, PaletteRisk::reversible),
        app("Show", "Safari", 4312, PaletteRisk::show),
        app("Show", "Slack", 977, PaletteRisk::show),
        app("Pause", "Slack", 977, PaletteRisk::reversible),
        app("Quit", "Slack", 977, PaletteRisk::destructive),
    };
}

std::vector<std::string> phrases(const std::vector<PaletteEntry>& entries) {
    std::vector<std::string> result;
    for (const auto& entry : entries) {
        result.push_back(entry.phrase());
    }
    return result;
}

TEST(PaletteRanker, AppNameListsHarmlessCommandsFirst) {
    EXPECT_EQ(phrases(PaletteRanker::rank(commands(), "saf", 4)),
              (std::vector<std::string>{"Show Safari", "Pause Safari", "Quit Safari",
                                        "Force Quit Safari"}));
}

TEST(PaletteRanker, VerbAndTargetTogetherPickOneCommand) {
    EXPECT_EQ(PaletteRanker::rank(commands(), "pause saf", 1)[0].id, "Pause:Safari");
    EXPECT_EQ(PaletteRanker::rank(commands(), "  Pause Sl ", 1)[0].id, "Pause:Slack");
    EXPECT_EQ(PaletteRanker::rank(commands(), "force saf", 1)[0].verb, "Force Quit");
    EXPECT_EQ(PaletteRanker::rank(commands(), "go hist", 1)[0].id, "tab:history");
}

TEST(PaletteRanker, VerbFirstThenLettersOfTheTargetAnywhere) {
    // "sfr" begins no word and is too far from "pause sfr" as a whole; only
    // taking the verb and the target apart finds it.
    EXPECT_EQ(phrases(PaletteRanker::rank(commands(), "pause sfr", 10)),
              std::vector<std::string>{"Pause Safari"});
}

TEST(PaletteRanker, AWholeWordBeatsAWordItOnlyBegins) {
    const std::vector<PaletteEntry> entries{
        {"show:mailbox", "Show", "Mailbox", "", PaletteRisk::show, 1},
        {"show:mail", "Show", "Mail", "", PaletteRisk::show, 1},
    };
    EXPECT_EQ(PaletteRanker::rank(entries, "show mail", 1)[0].id, "show:mail");
}

TEST(PaletteRanker, PidFindsItsApp) {
    const auto found = PaletteRanker::rank(commands(), "977", 10);
    ASSERT_EQ(found.size(), 3u);
    EXPECT_EQ(found[0].phrase(), "Show Slack");
    EXPECT_EQ(PaletteRanker::score("977", found[0]), 180);
    EXPECT_TRUE(PaletteRanker::rank(commands(), "12345", 10).empty());
}

TEST(PaletteRanker, EmptyQueryOrdersByRiskThenWeightThenInput) {
    const auto all = PaletteRanker::rank(commands(), "   ", 100);
    EXPECT_EQ(phrases(all), (std::vector<std::string>{
                                "Go to  Processes", "Go to  Performance", "Go to  App history",
                                "Go to  Startup apps", "Show Safari", "Show Slack", "Pause Safari",
                                "Pause Slack", "Force Quit Safari", "Quit Safari", "Quit Slack"}));
    EXPECT_EQ(PaletteRanker::rank(commands(), "", 2).size(), 2u);
}

TEST(PaletteRanker, ListsACommandOnceAndDropsWhatDoesNotMatch) {
    auto entries = commands();
    entries.push_back(entries[7]); // Show Safari again, under another id
    entries.back().id = "show:again";
    const auto found = PaletteRanker::rank(entries, "show saf", 10);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].id, "Show:Safari");
    EXPECT_TRUE(PaletteRanker::rank(entries, "zzz", 10).empty());
}

} // namespace
} // namespace loadwarden
