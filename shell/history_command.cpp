#include "app/foundation/clock.h"
#include "app/foundation/local_calendar.h"
#include "app/history/history_file.h"
#include "shell/command_line.h"
#include "shell/commands.h"
#include "shell/history_options.h"
#include "shell/history_report.h"

#include <QDir>
#include <ostream>

namespace loadwarden {

int runHistoryCommand(const std::vector<std::string>& arguments, std::ostream& out,
                      std::ostream& err) {
    return runCommand("history", historyUsage, parseHistoryOptions(arguments), out, err,
                      [&out, &err](const HistoryOptions& options) {
                          const Date now = currentDate();
                          const Calendar calendar = localCalendar();
                          const auto history = HistoryFile().load(now, calendar);
                          if (history.note) {
                              err << "loadwarden history: " << *history.note << '\n';
                          }
                          // Only what was recorded; this program never records itself.
                          const HistoryReport report{
                              .range = options.range,
                              .apps = history.value.summary(dayCount(options.range), now, calendar),
                              .home = QDir::homePath().toStdString()};
                          if (options.json) {
                              printHistoryJSON(report, out);
                          } else {
                              printHistoryReport(report, out);
                          }
                      });
}

} // namespace loadwarden
