// The history file: decodeHistory, and what the program does with what it reads.
#include "core/history/usage_history.h"
#include "tests/fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace loadwarden;
    auto history = decodeHistory(fuzz::text(data, size));
    if (!history) {
        return 0;
    }
    fuzz::check(history->version < 2, "a newer version is not read");
    const std::string saved = encodeHistory(*history);
    fuzz::check(decodeHistory(saved) == history, "what was read is saved and read back the same");

    // 2027-01-15, the last day of the seed.
    constexpr Date now = 1'800'000'000.0;
    const auto month = history->summary(30, now, Calendar::fixedOffset(0));
    for (std::size_t i = 1; i < month.size(); ++i) {
        const UsageTotals& busier = month[i - 1].totals;
        fuzz::check(busier.cpuSeconds > month[i].totals.cpuSeconds ||
                        (busier.cpuSeconds == month[i].totals.cpuSeconds &&
                         month[i - 1].name <= month[i].name),
                    "the busiest come first, then by name");
    }
    return 0;
}
