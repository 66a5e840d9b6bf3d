#include "app/alerts/notifier.h"

#include "core/diagnosis/alert_text.h"

#import <Foundation/Foundation.h>
#import <UserNotifications/UserNotifications.h>

namespace loadwarden {

namespace {

NSString* text(const std::string& value) {
    return [NSString stringWithUTF8String:value.c_str()] ?: @"";
}

// The user notification center, once the user allows alerts with sound.
class UserNotifier final : public Notifier {
public:
    void post(const AppAlert& alert) override {
        // The center exists only for a program with a bundle; the command
        // line has none and shows no notifications.
        if (NSBundle.mainBundle.bundleIdentifier == nil) {
            return;
        }
        UNMutableNotificationContent* content = [[UNMutableNotificationContent alloc] init];
        content.title = text(AlertText::title(alert));
        content.body = text(AlertText::notificationBody(alert));
        content.sound = UNNotificationSound.defaultSound;
        UNNotificationRequest* request =
            [UNNotificationRequest requestWithIdentifier:text(alert.id())
                                                 content:content
                                                 trigger:nil];
        UNUserNotificationCenter* center = UNUserNotificationCenter.currentNotificationCenter;
        [center requestAuthorizationWithOptions:(UNAuthorizationOptionAlert |
                                                 UNAuthorizationOptionSound)
                              completionHandler:^(BOOL granted, NSError* _Nullable) {
                                if (granted) {
                                    [center addNotificationRequest:request
                                             withCompletionHandler:nil];
                                }
                              }];
    }
};

} // namespace

std::unique_ptr<Notifier> makeSystemNotifier() {
    return std::make_unique<UserNotifier>();
}

} // namespace loadwarden
