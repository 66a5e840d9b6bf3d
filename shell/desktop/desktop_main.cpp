// Loadwarden, the desktop program: the window, the menu bar meter, alerts
// and App history, one copy per user.
#include "app/control/shared_ledger.h"
#include "app/model/app_model.h"
#include "core/foundation/program.h"
#include "shell/desktop/hot_key.h"
#include "shell/desktop/main_window.h"
#include "shell/desktop/menu_bar_meter.h"
#include "shell/desktop/prometheus_sharing.h"
#include "shell/desktop/qt_text.h"
#include "shell/desktop/settings_window.h"
#include "shell/desktop/single_instance.h"
#include "shell/desktop/welcome_dialog.h"
#include "shell/quit_signals.h"

#include <QApplication>
#include <QSocketNotifier>

#ifdef LOADWARDEN_HAS_UPDATER
#include "shell/desktop/updater.h"

#include <QMenu>
#endif

int main(int argc, char** argv) {
    using namespace loadwarden;
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Loadwarden"));
    QApplication::setApplicationDisplayName(QStringLiteral("Loadwarden"));
    QApplication::setDesktopFileName(qtText(applicationID));

    SingleInstance instance;
    if (!instance.isFirst()) {
        return 0;
    }
    // Whatever ended a copy of the program, this one continues what it left stopped.
    SharedLedger(DefaultsStore()).releaseOrphans();
    QuitSignals quitSignals;

    AppModel model(AppModel::machineParts());
    MainWindow window(model);
    MenuBarMeter meter(model);
    PrometheusSharing sharing(model);
    SettingsWindow settings(model, sharing);
    const auto welcome = [&] {
        model.setSheet(Sheet::welcome);
        WelcomeDialog(model, &window).exec();
        model.setSheet(std::nullopt);
    };
    QObject::connect(&window, &MainWindow::settingsRequested, &settings, [&] {
        settings.show();
        settings.raise();
        settings.activateWindow();
    });
    QObject::connect(&settings, &SettingsWindow::welcomeRequested, &window, welcome);

#ifdef LOADWARDEN_HAS_UPDATER
    // macOS with Sparkle: the command goes to the application menu, beside About and Settings.
    Updater updater;
    QAction* checkForUpdates = window.fileMenu().addAction(
        QStringLiteral("Check for Updates…"), &window, [&updater] { updater.checkForUpdates(); });
    checkForUpdates->setMenuRole(QAction::ApplicationSpecificRole);
#endif

    // With the meter on, closing the window leaves the program at work.
    const auto followMeter = [&] { QApplication::setQuitOnLastWindowClosed(!meter.isShown()); };
    QObject::connect(&model, &AppModel::settingsChanged, &application, followMeter);
    followMeter();

    HotKey hotKey;
    const auto followHotKey = [&] {
        hotKey.setEnabled(model.settings().hotKey && HotKey::isAvailable());
    };
    QObject::connect(&model, &AppModel::settingsChanged, &hotKey, followHotKey);
    QObject::connect(&hotKey, &HotKey::pressed, &window, &MainWindow::bringForward);
    followHotKey();

    QObject::connect(&instance, &SingleInstance::activated, &window, &MainWindow::bringForward);
    QObject::connect(&meter, &MenuBarMeter::openRequested, &window, &MainWindow::bringForward);
    QObject::connect(&meter, &MenuBarMeter::whyRequested, &window, [&window] {
        window.bringForward();
        window.showWhySheet();
    });
    QObject::connect(&meter, &MenuBarMeter::quitRequested, &application, &QApplication::quit);
    QObject::connect(&window, &MainWindow::quitRequested, &application, &QApplication::quit);
    QSocketNotifier quitNotifier(quitSignals.descriptor(), QSocketNotifier::Read);
    QObject::connect(&quitNotifier, &QSocketNotifier::activated, &application, &QApplication::quit);
    // The loop stops, everything held runs again, the history is saved.
    QObject::connect(&application, &QApplication::aboutToQuit, &model, &AppModel::prepareToQuit);
    QObject::connect(&application, &QApplication::aboutToQuit, &window, &MainWindow::saveLayout);

    model.start();
    window.restoreLayout();
    window.show();
    if (!model.settings().onboardingDone) {
        QMetaObject::invokeMethod(&window, welcome, Qt::QueuedConnection);
    }
    return QApplication::exec();
}
