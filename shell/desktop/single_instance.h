#pragma once

#include <QObject>

namespace loadwarden {

// One window-and-meter copy per user. The first copy owns a name on the
// session bus; a later one asks it to come forward and ends. macOS keeps
// bundled apps single by itself, so there every copy is the first.
class SingleInstance : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "io.loadwarden.Loadwarden")

public:
    explicit SingleInstance(QObject* parent = nullptr);

    // False when another copy runs; it has been asked to come forward.
    bool isFirst() const { return first_; }

public slots:
    void Activate();

signals:
    void activated();

private:
    bool first_ = true;
};

} // namespace loadwarden
