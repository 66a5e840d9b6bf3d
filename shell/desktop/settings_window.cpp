#include "shell/desktop/settings_window.h"

#include "core/text/platform_wording.h"
#include "core/text/units_format.h"
#include "shell/desktop/delete_history.h"
#include "shell/desktop/hot_key.h"
#include "shell/desktop/qt_text.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>

namespace loadwarden {

namespace {

QLabel* note(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setWordWrap(true);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

QSpinBox* stepper(const QString& prefix, const QString& suffix, int least, int most, int step,
                  QWidget* parent) {
    auto* box = new QSpinBox(parent);
    box->setRange(least, most);
    box->setSingleStep(step);
    box->setPrefix(prefix);
    box->setSuffix(suffix);
    box->setAccessibleName(prefix + suffix);
    return box;
}

QGroupBox* section(const QString& title, QWidget* parent) {
    auto* box = new QGroupBox(title, parent);
    new QVBoxLayout(box);
    return box;
}

} // namespace

SettingsWindow::SettingsWindow(AppModel& model, PrometheusSharing& sharing, QWidget* parent)
    : QWidget(parent, Qt::Window), model_(model), sharing_(sharing) {
    setWindowTitle(QStringLiteral("Settings"));
    auto* panes = new QTabWidget(this);
    panes->addTab(generalPane(), QIcon::fromTheme(QStringLiteral("preferences-system")),
                  QStringLiteral("General"));
    panes->addTab(alertsPane(),
                  QIcon::fromTheme(QStringLiteral("preferences-desktop-notification")),
                  QStringLiteral("Alerts"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(panes);
    connect(&model_, &AppModel::settingsChanged, this, &SettingsWindow::showSettings);
    connect(&sharing_, &PrometheusSharing::changed, this, &SettingsWindow::showSharing);
    showSettings();
    showSharing();
}

QWidget* SettingsWindow::generalPane() {
    auto* pane = new QWidget(this);
    auto* layout = new QVBoxLayout(pane);

    QGroupBox* updating = section(QStringLiteral("Updating"), pane);
    auto* row = new QFormLayout();
    interval_ = new QComboBox(updating);
    for (const Seconds choice : AppSettings::intervalChoices) {
        interval_->addItem(qtText(formatCount(choice, "second")), choice);
    }
    interval_->setAccessibleName(QStringLiteral("Update every"));
    row->addRow(QStringLiteral("Update every"), interval_);
    updating->layout()->addItem(row);
    updating->layout()->addWidget(note(
        QStringLiteral("Faster updates use a little more processor time themselves."), updating));

    QGroupBox* atHand = section(QStringLiteral("Always at hand"), pane);
    showMenuBar_ = new QCheckBox(QStringLiteral("Show the meter in the menu bar"), atHand);
    hotKey_ = new QCheckBox(QStringLiteral("Open with ⌃⇧⎋ from anywhere"), atHand);
    atHand->layout()->addWidget(showMenuBar_);
    atHand->layout()->addWidget(hotKey_);
    if (!HotKey::isAvailable()) {
        hotKey_->setEnabled(false);
        atHand->layout()->addWidget(
            note(QStringLiteral("The shortcut isn’t available on this desktop."), atHand));
    }
    atHand->layout()->addWidget(note(
        QStringLiteral("With the menu bar meter on, closing the window keeps Loadwarden running "
                       "for alerts and App history."),
        atHand));

    QGroupBox* yourData = section(QStringLiteral("Your data"), pane);
    yourData->layout()->addWidget(
        note(QString::fromUtf8(onThisPlatform(
                 "App history is kept only on this Mac, for 35 days. Nothing is uploaded.",
                 "App history is kept only on this computer, for 35 days. Nothing is uploaded.")),
             yourData));
    auto* remove = new QPushButton(QStringLiteral("Delete Usage History…"), yourData);
    yourData->layout()->addWidget(remove);
    auto* sharingRow = new QHBoxLayout();
    shareFigures_ =
        new QCheckBox(QStringLiteral("Share figures with Prometheus on port"), yourData);
    sharingPort_ = new QSpinBox(yourData);
    sharingPort_->setRange(1024, 65535);
    sharingPort_->setAccessibleName(QStringLiteral("Port for Prometheus"));
    sharingRow->addWidget(shareFigures_);
    sharingRow->addWidget(sharingPort_);
    sharingRow->addStretch();
    static_cast<QVBoxLayout*>(yourData->layout())->addLayout(sharingRow);
    yourData->layout()->addWidget(note(
        QStringLiteral("Anyone who can reach this computer on that port can read the names and "
                       "figures of its apps at /metrics."),
        yourData));

    QGroupBox* start = section(QStringLiteral("Getting started"), pane);
    auto* welcome = new QPushButton(QStringLiteral("Show the Welcome Screen Again"), start);
    start->layout()->addWidget(welcome);

    for (QWidget* part : {static_cast<QWidget*>(updating), static_cast<QWidget*>(atHand),
                          static_cast<QWidget*>(yourData), static_cast<QWidget*>(start)}) {
        layout->addWidget(part);
    }
    layout->addStretch();

    connect(interval_, &QComboBox::currentIndexChanged, this, &SettingsWindow::saveSettings);
    connect(showMenuBar_, &QCheckBox::toggled, this, &SettingsWindow::saveSettings);
    connect(hotKey_, &QCheckBox::toggled, this, &SettingsWindow::saveSettings);
    connect(remove, &QPushButton::clicked, this, [this] { confirmDeleteHistory(model_, this); });
    // The port is taken when its editing ends, not at every digit typed.
    const auto share = [this] {
        if (!showing_) {
            sharing_.set(shareFigures_->isChecked(), static_cast<quint16>(sharingPort_->value()));
        }
    };
    connect(shareFigures_, &QCheckBox::toggled, this, share);
    connect(sharingPort_, &QSpinBox::editingFinished, this, share);
    connect(welcome, &QPushButton::clicked, this, &SettingsWindow::welcomeRequested);
    return pane;
}

QWidget* SettingsWindow::alertsPane() {
    auto* pane = new QWidget(this);
    auto* layout = new QVBoxLayout(pane);

    QGroupBox* hot = section(QStringLiteral("An app running hot"), pane);
    hotEnabled_ = new QCheckBox(QStringLiteral("Tell me"), hot);
    hotPercent_ = stepper(QStringLiteral("Above "), QStringLiteral("% of a core"), 25, 800, 5, hot);
    hotMinutes_ = stepper(QStringLiteral("For "), QStringLiteral(" minutes"), 1, 120, 1, hot);
    for (QWidget* control : {static_cast<QWidget*>(hotEnabled_), static_cast<QWidget*>(hotPercent_),
                             static_cast<QWidget*>(hotMinutes_)}) {
        hot->layout()->addWidget(control);
    }

    QGroupBox* leak = section(QStringLiteral("Memory that keeps growing"), pane);
    leakEnabled_ = new QCheckBox(QStringLiteral("Tell me about likely leaks"), leak);
    leak->layout()->addWidget(leakEnabled_);
    leak->layout()->addWidget(note(QStringLiteral("Steady growth of 500 MB or more, by at least "
                                                  "half, over 30 minutes or longer."),
                                   leak));

    QGroupBox* stuck = section(QStringLiteral("An app that stops responding"), pane);
    stuckEnabled_ = new QCheckBox(QStringLiteral("Tell me"), stuck);
    stuckSeconds_ = stepper(QStringLiteral("After "), QStringLiteral(" seconds"), 5, 600, 5, stuck);
    stuck->layout()->addWidget(stuckEnabled_);
    stuck->layout()->addWidget(stuckSeconds_);
    if (!isMac) {
        stuck->layout()->addWidget(
            note(QStringLiteral("This desktop doesn’t tell other programs when an app stops "
                                "responding, so this alert can’t come here."),
                 stuck));
    }

    auto* repeat = new QFormLayout();
    repeatMinutes_ = stepper(QString(), QStringLiteral(" minutes"), 5, 1440, 5, pane);
    repeat->addRow(QStringLiteral("The same alert at most every "), repeatMinutes_);

    layout->addWidget(hot);
    layout->addWidget(leak);
    layout->addWidget(stuck);
    layout->addLayout(repeat);
    layout->addStretch();

    for (QCheckBox* box : {hotEnabled_, leakEnabled_, stuckEnabled_}) {
        connect(box, &QCheckBox::toggled, this, &SettingsWindow::saveSettings);
    }
    for (QSpinBox* box : {hotPercent_, hotMinutes_, stuckSeconds_, repeatMinutes_}) {
        connect(box, &QSpinBox::valueChanged, this, &SettingsWindow::saveSettings);
    }
    return pane;
}

void SettingsWindow::showSettings() {
    showing_ = true;
    const AppSettings& settings = model_.settings();
    interval_->setCurrentIndex(std::max(0, interval_->findData(settings.interval)));
    showMenuBar_->setChecked(settings.showMenuBar);
    hotKey_->setChecked(settings.hotKey);
    hotEnabled_->setChecked(settings.alerts.hotEnabled);
    hotPercent_->setValue(static_cast<int>(settings.alerts.hotPercent));
    hotMinutes_->setValue(static_cast<int>(settings.alerts.hotMinutes));
    leakEnabled_->setChecked(settings.alerts.leakEnabled);
    stuckEnabled_->setChecked(settings.alerts.stuckEnabled);
    stuckSeconds_->setValue(static_cast<int>(settings.alerts.stuckSeconds));
    repeatMinutes_->setValue(static_cast<int>(settings.alerts.repeatMinutes));
    showing_ = false;
}

// Tall enough for every wrapped note at the width the window has: a window
// does not ask its layout's height for its width by itself.
void SettingsWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    layout()->activate();
    setMinimumHeight(layout()->totalHeightForWidth(width()));
}

void SettingsWindow::showSharing() {
    showing_ = true;
    shareFigures_->setChecked(sharing_.isOn());
    sharingPort_->setValue(sharing_.port());
    showing_ = false;
}

void SettingsWindow::saveSettings() {
    if (showing_) {
        return;
    }
    AppSettings settings = model_.settings();
    settings.interval = interval_->currentData().toDouble();
    settings.showMenuBar = showMenuBar_->isChecked();
    settings.hotKey = hotKey_->isChecked();
    settings.alerts.hotEnabled = hotEnabled_->isChecked();
    settings.alerts.hotPercent = hotPercent_->value();
    settings.alerts.hotMinutes = hotMinutes_->value();
    settings.alerts.leakEnabled = leakEnabled_->isChecked();
    settings.alerts.stuckEnabled = stuckEnabled_->isChecked();
    settings.alerts.stuckSeconds = stuckSeconds_->value();
    settings.alerts.repeatMinutes = repeatMinutes_->value();
    model_.setSettings(settings);
}

} // namespace loadwarden
