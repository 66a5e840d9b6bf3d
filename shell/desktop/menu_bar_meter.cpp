#include "shell/desktop/menu_bar_meter.h"

#include "core/control/action_text.h"
#include "core/diagnosis/cause_text.h"
#include "shell/desktop/qt_text.h"

#include <QFont>
#include <QPainter>
#include <QPixmap>

namespace loadwarden {

namespace {

constexpr int iconSize = 64;

} // namespace

MenuBarMeter::MenuBarMeter(AppModel& model, QObject* parent) : QObject(parent), model_(model) {
    menu_.addAction(QStringLiteral("Open Loadwarden"), this, &MenuBarMeter::openRequested);
    menu_.addAction(qtText(CauseText::question()), this, &MenuBarMeter::whyRequested);
    menu_.addSeparator();
    menu_.addAction(QStringLiteral("Quit Loadwarden"), this, &MenuBarMeter::quitRequested);
#ifndef __APPLE__
    tray_.setContextMenu(&menu_);
    connect(&tray_, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason why) {
                if (why == QSystemTrayIcon::Trigger || why == QSystemTrayIcon::DoubleClick) {
                    emit openRequested();
                }
            });
#endif
    connect(&model_, &AppModel::menuBarChanged, this, &MenuBarMeter::follow);
    connect(&model_, &AppModel::settingsChanged, this, &MenuBarMeter::follow);
    // What is paused or limited changes with the processes, not the meter's text.
    connect(&model_, &AppModel::ticked, this, &MenuBarMeter::follow);
    follow();
}

QString MenuBarMeter::toolTip() const {
    std::size_t paused = 0;
    const std::map<std::string, double> limits = model_.controller().limits();
    for (const ProcessGroup& group : model_.latestGroups()) {
        paused += group.isPaused() && !limits.contains(group.id) ? 1 : 0;
    }
    const std::string& text = model_.menuBar().text;
    const std::string held = ActionText::heldSummary(paused, limits.size());
    return QString::fromStdString((text.empty() ? "Loadwarden" : text) +
                                  (held.empty() ? "" : "\n" + held));
}

bool MenuBarMeter::isAvailable() {
#ifdef __APPLE__
    return true;
#else
    return QSystemTrayIcon::isSystemTrayAvailable();
#endif
}

bool MenuBarMeter::isShown() const {
    return model_.settings().showMenuBar && isAvailable();
}

void MenuBarMeter::follow() {
    const MenuBarState& state = model_.menuBar();
#ifdef __APPLE__
    statusItem_.show(state, toolTip().toStdString());
    statusItem_.setVisible(isShown());
#else
    tray_.setIcon(drawIcon(state));
    // Each change is a message to the tray host: only real ones are sent.
    if (const QString tip = toolTip(); tip != tray_.toolTip()) {
        tray_.setToolTip(tip);
    }
    tray_.setVisible(isShown());
#endif
}

QIcon MenuBarMeter::drawIcon(const MenuBarState& state) {
    QPixmap pixmap(iconSize, iconSize);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(state.busy ? QColor(0xd9, 0x48, 0x0f) : QColor(0x3a, 0x3f, 0x46));
    painter.drawRoundedRect(pixmap.rect(), 12, 12);
    // The figure without its sign, as large as the plate allows.
    QString figure = QString::fromStdString(state.cpu);
    figure.remove(QLatin1Char('%'));
    QFont font = painter.font();
    font.setBold(true);
    font.setPixelSize(figure.size() > 2 ? 26 : 34);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(pixmap.rect(), Qt::AlignCenter,
                     figure.isEmpty() ? QStringLiteral("–") : figure);
    return QIcon(pixmap);
}

} // namespace loadwarden
