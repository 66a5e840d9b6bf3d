#include "app/alerts/darwin/notification_center.h"

#import <Foundation/Foundation.h>
#import <UserNotifications/UserNotifications.h>

namespace loadwarden {

namespace {

// Autoreleased; empty for text that is not UTF-8.
NSString* text(const std::string& value) {
    NSString* string = [NSString stringWithUTF8String:value.c_str()];
    return string != nil ? string : @"";
}

} // namespace

void NotificationCenter::deliver(const std::string& identifier, const std::string& title,
                                 const std::string& body) {
    @autoreleasepool {
        UNMutableNotificationContent* content =
            [[[UNMutableNotificationContent alloc] init] autorelease];
        content.title = text(title);
        content.body = text(body);
        content.sound = UNNotificationSound.defaultSound;
        // No trigger: delivered at once.
        UNNotificationRequest* request =
            [UNNotificationRequest requestWithIdentifier:text(identifier)
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

} // namespace loadwarden
