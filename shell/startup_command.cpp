#include "app/startup/startup_catalog.h"
#include "core/text/case_folding.h"
#include "shell/command_line.h"
#include "shell/commands.h"
#include "shell/readings.h"
#include "shell/startup_options.h"
#include "shell/startup_report.h"

#include <ostream>

namespace loadwarden {

namespace {

// Items known by this label or name, whatever its case.
std::vector<StartupItem> named(const std::vector<StartupItem>& items, const std::string& name) {
    std::vector<StartupItem> found;
    for (const StartupItem& item : items) {
        if (item.label == name || lowercased(item.name) == lowercased(name)) {
            found.push_back(item);
        }
    }
    return found;
}

int turn(StartupCatalog& catalog, const StartupOptions& options, std::ostream& out,
         std::ostream& err) {
    const auto found = named(catalog.items({}), options.target);
    if (found.empty()) {
        err << "loadwarden startup: no startup item is called '" << options.target << "'\n";
        return exitFailure;
    }
    if (found.size() > 1) {
        err << "loadwarden startup: several items are called '" << options.target
            << "'; name one by its label:\n";
        for (const StartupItem& item : found) {
            err << "  " << item.label << "  (" << item.plistPath << ")\n";
        }
        return exitUsage;
    }
    if (const auto problem = catalog.setEnabled(found.front(), *options.turnOn)) {
        err << "loadwarden startup: " << *problem << '\n';
        return exitRefused;
    }
    out << found.front().name << (*options.turnOn ? " is turned on\n" : " is turned off\n");
    return exitSuccess;
}

} // namespace

int runStartupCommand(const std::vector<std::string>& arguments, std::ostream& out,
                      std::ostream& err) {
    return runCommand("startup", startupUsage, parseStartupOptions(arguments), out, err,
                      [&](const StartupOptions& options) {
                          const auto catalog = makeStartupCatalog();
                          if (options.turnOn) {
                              return turn(*catalog, options, out, err);
                          }
                          // Impact needs what the items' processes use now.
                          const auto processes = takeReadings(2, 1.0, false).last.processes;
                          const auto rows = startupRows(catalog->items(processes), processes);
                          if (options.json) {
                              printStartupJSON(rows, out);
                          } else {
                              printStartupReport(rows, out);
                          }
                          return out ? exitSuccess : exitFailure;
                      });
}

} // namespace loadwarden
