#include "shell/desktop/updater.h"

#import <AppKit/AppKit.h>
#import <Sparkle/Sparkle.h>
#import <objc/runtime.h>

// Sparkle's standard interface does the updating, but the two plain outcomes of
// a check the user starts (no newer version, no answer) are told in the
// program's own words. Only a user driver decides what Sparkle shows, and the
// standard controller cannot take another, so the updater is built by hand
// with a driver of ours in front of the standard one: it answers those two
// calls and forwards every other call of the driver protocol.

namespace {

NSString* appName() {
    NSString* name = [NSBundle.mainBundle objectForInfoDictionaryKey:@"CFBundleDisplayName"];
    return name != nil ? name : @"Loadwarden";
}

// Shown after the call that reported the outcome has returned, so that Sparkle
// has ended its session and closed its progress window first.
void tellLater(NSString* title, NSString* text) {
    dispatch_async(dispatch_get_main_queue(), ^{
      @autoreleasepool {
          NSAlert* alert = [[[NSAlert alloc] init] autorelease];
          alert.messageText = title;
          alert.informativeText = text;
          [alert runModal];
      }
    });
}

void tellCheckFailed() {
    tellLater(@"Couldn’t check for updates",
              [NSString stringWithFormat:@"Check your internet connection and try again. %@ also "
                                         @"checks on its own about once a day.",
                                         appName()]);
}

void tellUpToDate() {
    NSString* app = appName();
    tellLater(@"You’re up to date",
              [NSString stringWithFormat:@"%@ is the newest version. %@ checks for updates on its "
                                         @"own and will let you know when there’s a new one.",
                                         app, app]);
}

// Whether Sparkle is calling the user driver, required method or optional.
bool isUserDriverCall(SEL selector) {
    Protocol* driver = @protocol(SPUUserDriver);
    return protocol_getMethodDescription(driver, selector, YES, YES).name != nullptr ||
           protocol_getMethodDescription(driver, selector, NO, YES).name != nullptr;
}

} // namespace

// The updater's user driver and its delegate in one: it sees a check the user
// started begin, and the cycle of every check end.
@interface LoadwardenUpdateDriver : NSObject <SPUUserDriver, SPUUpdaterDelegate>
@property(nonatomic) BOOL checking;
- (instancetype)initWithStandardDriver:(SPUStandardUserDriver*)standard;
@end

// The driver methods left out here are the standard driver's, by forwarding;
// that also follows whichever methods the installed Sparkle's protocol has.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wprotocol"
@implementation LoadwardenUpdateDriver {
    SPUStandardUserDriver* _standard;
    BOOL _tellsOutcome; // a check the user started has found no update so far
}

- (instancetype)initWithStandardDriver:(SPUStandardUserDriver*)standard {
    if ((self = [super init])) {
        _standard = [standard retain];
    }
    return self;
}

- (void)dealloc {
    [_standard release];
    [super dealloc];
}

- (BOOL)respondsToSelector:(SEL)selector {
    return [super respondsToSelector:selector] ||
           (isUserDriverCall(selector) && [_standard respondsToSelector:selector]);
}

- (id)forwardingTargetForSelector:(SEL)selector {
    return isUserDriverCall(selector) ? _standard : [super forwardingTargetForSelector:selector];
}

- (void)showUserInitiatedUpdateCheckWithCancellation:(void (^)(void))cancellation {
    _tellsOutcome = YES;
    [_standard showUserInitiatedUpdateCheckWithCancellation:cancellation];
}

// From here on the standard windows tell the story, errors of the download included.
- (void)showUpdateFoundWithAppcastItem:(SUAppcastItem*)appcastItem
                                 state:(SPUUserUpdateState*)state
                                 reply:(void (^)(SPUUserUpdateChoice))reply {
    _tellsOutcome = NO;
    [_standard showUpdateFoundWithAppcastItem:appcastItem state:state reply:reply];
}

// Sparkle asks this only of a check the user started.
- (void)showUpdateNotFoundWithError:(NSError*)error
                    acknowledgement:(void (^)(void))acknowledgement {
    _tellsOutcome = NO;
    acknowledgement();
    tellUpToDate();
}

- (void)showUpdaterError:(NSError*)error acknowledgement:(void (^)(void))acknowledgement {
    if (!_tellsOutcome) {
        [_standard showUpdaterError:error acknowledgement:acknowledgement];
        return;
    }
    _tellsOutcome = NO;
    acknowledgement();
    tellCheckFailed();
}

- (void)dismissUpdateInstallation {
    _tellsOutcome = NO;
    [_standard dismissUpdateInstallation];
}

- (void)updater:(SPUUpdater*)updater
    didFinishUpdateCycleForUpdateCheck:(SPUUpdateCheck)updateCheck
                                 error:(NSError*)error {
    self.checking = NO;
}

@end
#pragma clang diagnostic pop

namespace loadwarden {

struct Updater::Native {
    LoadwardenUpdateDriver* driver = nil; // retained
    SPUUpdater* updater = nil;            // retained
    bool started = false;
};

Updater::Updater() : native_(std::make_unique<Native>()) {
    @autoreleasepool {
        NSBundle* bundle = NSBundle.mainBundle;
        SPUStandardUserDriver* standard =
            [[[SPUStandardUserDriver alloc] initWithHostBundle:bundle delegate:nil] autorelease];
        native_->driver = [[LoadwardenUpdateDriver alloc] initWithStandardDriver:standard];
        native_->updater = [[SPUUpdater alloc] initWithHostBundle:bundle
                                                applicationBundle:bundle
                                                       userDriver:native_->driver
                                                         delegate:native_->driver];
        NSError* error = nil;
        native_->started = [native_->updater startUpdater:&error];
        if (!native_->started) {
            // A bundle set up wrongly (no feed, a bad key); a check the user starts says it failed.
            NSLog(@"Loadwarden cannot check for updates: %@", error);
        }
    }
}

Updater::~Updater() {
    [native_->updater release];
    [native_->driver release];
}

void Updater::checkForUpdates() {
    @autoreleasepool {
        if (!native_->started) {
            tellCheckFailed();
            return;
        }
        // False while Sparkle works in the background, showing nothing; that ends by itself.
        if (!native_->updater.canCheckForUpdates) {
            return;
        }
        native_->driver.checking = YES;
        [native_->updater checkForUpdates];
    }
}

bool Updater::isChecking() const {
    return native_->driver.checking;
}

} // namespace loadwarden
