#include "shell/model_session.h"

#include "shell/quit_signals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

namespace loadwarden {

bool runModelSession(const ModelSession& session,
                     const std::function<bool(const AppModel&)>& afterTick) {
    static int argc = 1;
    static char name[] = "loadwarden";
    static char* argv[] = {name, nullptr};
    QCoreApplication application(argc, argv);
    QuitSignals quitSignals;

    AppModel::Parts parts = AppModel::machineParts();
    parts.interval = session.interval;
    AppModel model(std::move(parts));
    model.setWindowVisible(session.windowVisible);
    std::unique_ptr<QObject> companion;
    if (session.companion) {
        companion = session.companion(model);
        if (!companion) {
            return false;
        }
    }
    QObject::connect(&model, &AppModel::ticked, &application, [&] {
        if (!afterTick(model)) {
            QCoreApplication::quit();
        }
    });
    std::optional<QSocketNotifier> quitNotifier;
    if (quitSignals.descriptor() >= 0) {
        quitNotifier.emplace(quitSignals.descriptor(), QSocketNotifier::Read);
        QObject::connect(&*quitNotifier, &QSocketNotifier::activated, &application,
                         &QCoreApplication::quit);
    }
    model.start();
    QCoreApplication::exec();
    model.prepareToQuit();
    return true;
}

} // namespace loadwarden
