// The history file: decodeHistory, and what the program does with what it reads.
#include "core/history/usage_history.h"
#include "tests/fuzz/fuzz_support.h"

void loadwarden::fuzz::run(std::string_view text) {
    auto history = decodeHistory(text);
    if (!history) {
        return;
    }
    check(history->version < 2, "a newer version is not read");
    check(decodeHistory(encodeHistory(*history)) == history,
          "what was read is saved and read back the same");

    // 2027-01-15, the last day of the seed.
    constexpr Date now = 1'800'000'000.0;
    const auto month = history->summary(30, now, Calendar::fixedOffset(0));
    for (std::size_t i = 1; i < month.size(); ++i) {
        const UsageTotals& busier = month[i - 1].totals;
        check(busier.cpuSeconds > month[i].totals.cpuSeconds ||
                  (busier.cpuSeconds == month[i].totals.cpuSeconds &&
                   month[i - 1].name <= month[i].name),
              "the busiest come first, then by name");
    }
}
