#include "app/alerts/notifier.h"

#include "core/diagnosis/alert_text.h"

#import <Foundation/Foundation.h>
#import <UserNotifications/UserNotifications.h>

namespace loadwarden {

namespace {

// Autoreleased; empty for text that is not UTF-8.
NSString* text(const std::string& value) {
    NSString* string = [NSString stringWithUTF8String:value.c_str()];
    return string != nil ? string : @"";
}

// The user notification center, once the user allows alerts with sound.
class UserNotifier final : public Notifier {
public:
    void post(const AppAlert& alert) override {
        @autoreleasepool {
            // The center raises an exception in a program without a bundle:
            // the command line has none and shows no notifications.
            if (NSBundle.mainBundle.bundleIdentifier == nil) {
                return;
            }
            UNMutableNotificationContent* content =
                [[[UNMutableNotificationContent alloc] init] autorelease];
            content.title = text(AlertText::title(alert));
            content.body = text(AlertText::notificationBody(alert));
            content.sound = UNNotificationSound.defaultSound;
            // No trigger: delivered at once.
            UNNotificationRequest* request =
                [UNNotificationRequest requestWithIdentifier:text(alert.id())
                                                     content:content
                                                     trigger:nil];
            UNUserNotificationCenter* center = UNUserNotificationCenter.currentNotificationCenter;
            // Asks the user only the first time; the handler runs later, on a
            // queue of the center's, and its copy keeps the request alive.
            [center requestAuthorizationWithOptions:(UNAuthorizationOptionAlert |
                                                     UNAuthorizationOptionSound)
                                  completionHandler:^(BOOL granted, NSError*) {
                                    if (granted) {
                                        [center addNotificationRequest:request
                                                 withCompletionHandler:nil];
                                    }
                                  }];
        }
    }
};

} // namespace

std::unique_ptr<Notifier> makeSystemNotifier() {
    return std::make_unique<UserNotifier>();
}

} // namespace loadwarden
