#pragma once

#include "core/diagnosis/explainer.h"

#include <iosfwd>
#include <map>
#include <string>
#include <vector>

namespace loadwarden {

// The answer to "why is it slow" for the command line.
struct WhyReport {
    std::vector<Cause> causes;
    std::vector<ExplainerApp> busiest;
    // Why an app can't be acted on (read-only, protected), by app key.
    std::map<std::string, std::string> readOnlyReasons;
};

// The causes as cards: title, wrapped detail, score and fix; or the all-clear.
// Then the busiest apps.
void printWhyReport(const WhyReport& report, std::ostream& out);

// The causes with their data model's field names plus their texts.
void printWhyJSON(const WhyReport& report, std::ostream& out);

} // namespace loadwarden
