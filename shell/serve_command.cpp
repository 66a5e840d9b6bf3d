#include "shell/command_line.h"
#include "shell/commands.h"
#include "shell/model_session.h"
#include "shell/serve/metrics_service.h"
#include "shell/serve_options.h"

#include <ostream>

namespace loadwarden {

int runServeCommand(const std::vector<std::string>& arguments, std::ostream& out,
                    std::ostream& err) {
    return runCommand(
        "serve", serveUsage, parseServeOptions(arguments), out, err,
        [&out, &err](const ServeOptions& options) {
            const auto serve = [&](AppModel& model) -> std::unique_ptr<QObject> {
                auto service =
                    std::make_unique<MetricsService>(model, static_cast<std::size_t>(options.apps));
                if (const auto error = service->start(options.listen)) {
                    err << "loadwarden serve: cannot listen on " << options.listen.host << ':'
                        << options.listen.port << ": " << error->toStdString() << '\n';
                    return nullptr;
                }
                out << "Answering Prometheus at " << service->url().toStdString() << std::endl;
                return service;
            };
            const bool served = runModelSession(
                {.windowVisible = false, .interval = options.interval, .companion = serve},
                [](const AppModel&) { return true; });
            return served ? exitSuccess : exitUsage;
        });
}

} // namespace loadwarden
