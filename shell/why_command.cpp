#include "core/diagnosis/diagnosis.h"
#include "shell/command_line.h"
#include "shell/commands.h"
#include "shell/model_session.h"
#include "shell/why_options.h"
#include "shell/why_report.h"

#include <ostream>

namespace loadwarden {

namespace {

constexpr std::size_t busiestCount = 5;
constexpr int ticksForRates = 2;

WhyReport diagnose(const AppModel& model, std::size_t maxCount) {
    const SystemPicture picture = model.picture();
    return {Explainer::explain(picture, maxCount), Diagnosis::busiest(picture.apps, busiestCount),
            Diagnosis::readOnlyReasons(model.groups())};
}

} // namespace

int runWhyCommand(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err) {
    return runCommand(
        "why", whyUsage, parseWhyOptions(arguments), out, err, [&out](const WhyOptions& options) {
            std::optional<WhyReport> report;
            runModelSession(
                {.windowVisible = true, .interval = options.interval}, [&](const AppModel& model) {
                    // Heavy startup items count too, once read.
                    if (model.sampleCount() < ticksForRates || !model.startupLoaded()) {
                        return true;
                    }
                    report = diagnose(model, static_cast<std::size_t>(options.maxCount));
                    return false;
                });
            if (!report) {
                return exitFailure; // interrupted before there was anything to say
            }
            if (options.json) {
                printWhyJSON(*report, out);
            } else {
                printWhyReport(*report, out);
            }
            return out ? exitSuccess : exitFailure;
        });
}

} // namespace loadwarden
