#pragma once

// Qt's event loop for tests of objects that live on it.

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <chrono>
#include <functional>
#include <thread>

namespace loadwarden::support {

// The process's application object, made on first use.
inline void ensureApplication() {
    static int argc = 1;
    static char name[] = "tests";
    static char* argv[] = {name, nullptr};
    if (!QCoreApplication::instance()) {
        new QCoreApplication(argc, argv);
    }
}

// Runs the event loop until `done` holds or a generous deadline passes;
// whether it holds.
inline bool processEventsUntil(const std::function<bool()>& done, int milliseconds = 10000) {
    const QDeadlineTimer deadline(milliseconds);
    while (!done() && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents);
        // Not spinning, so the processes the test watches get the processor.
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return done();
}

} // namespace loadwarden::support
