#pragma once

#include "app/model/app_model.h"
#include "shell/desktop/prometheus_sharing.h"

#include <QWidget>

class QCheckBox;
class QComboBox;
class QSpinBox;

namespace loadwarden {

// The General and Alerts panes. Every change is saved at once, whole.
class SettingsWindow : public QWidget {
    Q_OBJECT

public:
    SettingsWindow(AppModel& model, PrometheusSharing& sharing, QWidget* parent = nullptr);

signals:
    void welcomeRequested();

protected:
    void showEvent(QShowEvent* event) override;

private:
    QWidget* generalPane();
    QWidget* alertsPane();
    void showSettings();
    void saveSettings();
    void showSharing();

    AppModel& model_;
    PrometheusSharing& sharing_;
    QComboBox* interval_ = nullptr;
    QCheckBox* showMenuBar_ = nullptr;
    QCheckBox* hotKey_ = nullptr;
    QCheckBox* hotEnabled_ = nullptr;
    QSpinBox* hotPercent_ = nullptr;
    QSpinBox* hotMinutes_ = nullptr;
    QCheckBox* leakEnabled_ = nullptr;
    QCheckBox* stuckEnabled_ = nullptr;
    QSpinBox* stuckSeconds_ = nullptr;
    QSpinBox* repeatMinutes_ = nullptr;
    QCheckBox* shareFigures_ = nullptr;
    QSpinBox* sharingPort_ = nullptr;
    bool showing_ = false; // controls being set from the model, not by the user
};

} // namespace loadwarden
