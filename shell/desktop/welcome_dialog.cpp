#include "shell/desktop/welcome_dialog.h"

#include "core/text/platform_wording.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace loadwarden {

WelcomeDialog::WelcomeDialog(AppModel& model, QWidget* parent) : QDialog(parent) {
    setWindowTitle(QStringLiteral("Welcome to Loadwarden"));
    auto* layout = new QVBoxLayout(this);
    auto* title = new QLabel(QStringLiteral("<h2>Welcome to Loadwarden</h2>"), this);
    auto* body = new QLabel(
        QString::fromUtf8(onThisPlatform(
            "<p>Loadwarden shows what your Mac is doing, app by app, and says in plain words "
            "why it is slow, with a fix for each cause.</p>",
            "<p>Loadwarden shows what your computer is doing, app by app, and says in plain "
            "words why it is slow, with a fix for each cause.</p>")) +
            QStringLiteral(
                "<p><b>Right-click an app</b> to quit it, pause it or hold it to a share of the "
                "processor. Paused and limited apps run again when Loadwarden quits.</p>"
                "<p><b>The meter</b> keeps the processor figure in sight and names an app "
                "using half a core or more. With it on, closing the window keeps Loadwarden "
                "running for alerts and App history.</p>"
                "<p><b>Alerts</b> tell you when an app runs hot for minutes on end, when its "
                "memory keeps growing, or when it stops responding.</p>"),
        this);
    body->setWordWrap(true);
    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(QStringLiteral("Get Started"), QDialogButtonBox::AcceptRole)
        ->setDefault(true);
    layout->addWidget(title);
    layout->addWidget(body);
    layout->addWidget(buttons);
    setMinimumWidth(460);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(this, &QDialog::finished, &model, [&model] {
        AppSettings settings = model.settings();
        settings.onboardingDone = true;
        model.setSettings(settings);
    });
}

} // namespace loadwarden
