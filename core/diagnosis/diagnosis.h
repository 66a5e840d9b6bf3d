#pragma once

#include "core/diagnosis/alert_engine.h"
#include "core/diagnosis/explainer.h"
#include "core/grouping/process_group.h"

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace loadwarden {

// Builds what the diagnosis of slowness looks at from one refresh.
namespace Diagnosis {

// One group as the explainer sees it; what may be done to it follows the
// process policy.
ExplainerApp explainerApp(const ProcessGroup& group, bool notResponding,
                          std::optional<double> leakGrowth);

// Every group of the refresh. Leak growth comes from the memory history that
// the alert engine keeps, so a fresh engine knows of no leaks yet.
SystemPicture picture(const SystemSample& system, const std::vector<ProcessGroup>& groups,
                      const std::set<std::string>& unresponsive, const AlertEngine& history,
                      int heavyStartupItems);

// The apps working hardest, by processor then memory; never this program.
std::vector<ExplainerApp> busiest(const std::vector<ExplainerApp>& apps, std::size_t count);

// Why nothing can be done to a group, by group id, for the groups that say so.
std::map<std::string, std::string> readOnlyReasons(const std::vector<ProcessGroup>& groups);

} // namespace Diagnosis

} // namespace loadwarden
