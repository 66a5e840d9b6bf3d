#pragma once

#include "app/model/app_model.h"

class QWidget;

namespace loadwarden {

// Asks first, from the App history tab or the settings; the history goes
// and is saved at once only when the user confirms.
void confirmDeleteHistory(AppModel& model, QWidget* parent);

} // namespace loadwarden
