#pragma once

#include "app/model/app_model.h"

#include <QDialog>

namespace loadwarden {

// What Loadwarden does, shown at the first start and on request; closing it
// marks the welcome as done.
class WelcomeDialog : public QDialog {
    Q_OBJECT

public:
    explicit WelcomeDialog(AppModel& model, QWidget* parent = nullptr);
};

} // namespace loadwarden
