#include "shell/desktop/status_item.h"

#include <QMenu>

// Qt comes first: AppKit brings the system's assertion macros (check, verify),
// which would rewrite Qt's functions of those names.
#import <AppKit/AppKit.h>

namespace loadwarden {

struct StatusItem::Native {
    // Retained: the status bar drops an item nobody holds. Nil without an
    // application (Qt's offscreen platform), where every message is a no-op.
    NSStatusItem* item = nil;
};

StatusItem::StatusItem(QMenu& menu) : native_(std::make_unique<Native>()) {
    if (NSApp == nil) {
        return;
    }
    @autoreleasepool {
        native_->item = [[[NSStatusBar systemStatusBar]
            statusItemWithLength:NSVariableStatusItemLength] retain];
        // Qt's own native menu, which it keeps in step with the QMenu's actions.
        native_->item.menu = menu.toNSMenu();
    }
}

StatusItem::~StatusItem() {
    if (native_->item != nil) {
        [[NSStatusBar systemStatusBar] removeStatusItem:native_->item];
        [native_->item release];
    }
}

void StatusItem::show(const MenuBarState& state, const std::string& toolTip) {
    @autoreleasepool {
        // Nil for text that is not UTF-8; a blank title would leave nothing to click.
        NSString* title = [NSString stringWithUTF8String:state.text.c_str()];
        if (title.length == 0) {
            title = @"–";
        }
        // Digits of one width, so the item does not jitter as the figure changes.
        NSFont* font =
            [NSFont monospacedDigitSystemFontOfSize:[NSFont menuBarFontOfSize:0].pointSize
                                             weight:NSFontWeightRegular];
        NSColor* colour = state.busy ? NSColor.systemOrangeColor : NSColor.labelColor;
        native_->item.button.attributedTitle = [[[NSAttributedString alloc]
            initWithString:title
                attributes:@{NSFontAttributeName : font, NSForegroundColorAttributeName : colour}]
            autorelease];
        native_->item.button.toolTip = [NSString stringWithUTF8String:toolTip.c_str()];
    }
}

void StatusItem::setVisible(bool visible) {
    native_->item.visible = visible;
}

} // namespace loadwarden
