#include "app/foundation/local_calendar.h"

#include <QDateTime>
#include <QTimeZone>
#include <cmath>

namespace loadwarden {

Calendar localCalendar() {
    return Calendar{[zone = QTimeZone::systemTimeZone()](Date date) {
        const auto seconds = static_cast<qint64>(std::floor(date));
        return static_cast<Seconds>(zone.offsetFromUtc(QDateTime::fromSecsSinceEpoch(seconds)));
    }};
}

} // namespace loadwarden
