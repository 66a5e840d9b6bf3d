#pragma once

#include <QObject>
#include <functional>
#include <memory>

namespace loadwarden {

class HotKeyRegistration;

// Control-Shift-Escape from any app brings the window forward: on macOS a
// hot key registered with the system; on Linux a shortcut the desktop's
// global-shortcuts portal binds, where the session has one.
class HotKey : public QObject {
    Q_OBJECT

public:
    explicit HotKey(QObject* parent = nullptr);
    ~HotKey() override;

    // Whether this desktop lends a key to programs at all.
    static bool isAvailable();
    // Registers when on and not registered yet; removes the registration when off.
    void setEnabled(bool enabled);
    bool isRegistered() const { return registration_ != nullptr; }

signals:
    void pressed();

private:
    std::unique_ptr<HotKeyRegistration> registration_;
};

// What each platform provides: a registration that lasts as long as the object.
class HotKeyRegistration {
public:
    virtual ~HotKeyRegistration() = default;
};

bool hotKeyAvailable();
// Null when the system refused; `onPress` runs on the main thread.
std::unique_ptr<HotKeyRegistration> registerHotKey(std::function<void()> onPress);

} // namespace loadwarden
