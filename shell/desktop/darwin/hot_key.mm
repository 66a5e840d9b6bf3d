#include "shell/desktop/hot_key.h"

#include <Carbon/Carbon.h>

// Carbon's hot keys still are the way for a program to hear one key from
// any app without the accessibility permission an event tap needs.

namespace loadwarden {

namespace {

constexpr OSType signature = ('L' << 24) | ('D' << 16) | ('W' << 8) | 'N';
constexpr UInt32 hotKeyID = 1;

class CarbonHotKey final : public HotKeyRegistration {
public:
    explicit CarbonHotKey(std::function<void()> onPress) : onPress_(std::move(onPress)) {}

    ~CarbonHotKey() override {
        if (hotKey_ != nullptr) {
            UnregisterEventHotKey(hotKey_);
            hotKey_ = nullptr;
        }
        if (handler_ != nullptr) {
            RemoveEventHandler(handler_);
            handler_ = nullptr;
        }
    }

    CarbonHotKey(const CarbonHotKey&) = delete;
    CarbonHotKey& operator=(const CarbonHotKey&) = delete;

    // Control-Shift-Escape; false when the system refused, say because another
    // program holds the same keys.
    bool install() {
        const EventTypeSpec pressed{kEventClassKeyboard, kEventHotKeyPressed};
        if (InstallEventHandler(GetApplicationEventTarget(), &CarbonHotKey::handle, 1, &pressed,
                                this, &handler_) != noErr) {
            return false;
        }
        return RegisterEventHotKey(kVK_Escape, controlKey | shiftKey,
                                   EventHotKeyID{signature, hotKeyID}, GetApplicationEventTarget(),
                                   0, &hotKey_) == noErr;
    }

private:
    // Runs on the main thread, where the application's events are dispatched.
    static OSStatus handle(EventHandlerCallRef, EventRef event, void* userData) {
        EventHotKeyID pressed{};
        if (GetEventParameter(event, kEventParamDirectObject, typeEventHotKeyID, nullptr,
                              sizeof(pressed), nullptr, &pressed) != noErr ||
            pressed.signature != signature || pressed.id != hotKeyID) {
            return eventNotHandledErr; // someone else's key
        }
        static_cast<CarbonHotKey*>(userData)->onPress_();
        return noErr;
    }

    std::function<void()> onPress_;
    EventHandlerRef handler_ = nullptr;
    EventHotKeyRef hotKey_ = nullptr;
};

} // namespace

bool hotKeyAvailable() {
    return true;
}

std::unique_ptr<HotKeyRegistration> registerHotKey(std::function<void()> onPress) {
    auto hotKey = std::make_unique<CarbonHotKey>(std::move(onPress));
    if (!hotKey->install()) {
        return nullptr; // its destructor removes the handler it installed
    }
    return hotKey;
}

} // namespace loadwarden
