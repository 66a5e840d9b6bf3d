#include "shell/command_line.h"
#include "shell/commands.h"
#include "shell/model_session.h"
#include "shell/watch_options.h"

#include <ostream>

namespace loadwarden {

int runWatchCommand(const std::vector<std::string>& arguments, std::ostream& out,
                    std::ostream& err) {
    return runCommand("watch", watchUsage, parseWatchOptions(arguments), out, err,
                      [&out](const WatchOptions& options) {
                          runModelSession({.windowVisible = false, .interval = options.interval},
                                          [&out](const AppModel& model) {
                                              out << model.menuBar().text << std::endl;
                                              return true;
                                          });
                      });
}

} // namespace loadwarden
