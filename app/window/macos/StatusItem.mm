#include "window/MenuBarItem.h"

#import <AppKit/AppKit.h>

#include <utility>

#if !__has_feature(objc_arc)
#error "Compile with -fobjc-arc"
#endif

@interface KorvantiStatusItemTarget : NSObject {
@public
    korvanti::MenuBarItem::Clicked clicked;
}
- (void)click:(id)sender;
@end

@implementation KorvantiStatusItemTarget
- (void)click:(id)__unused sender {
    clicked();
}
@end

namespace korvanti {
namespace {

class StatusItem : public MenuBarItem {
public:
    explicit StatusItem(Clicked clicked) {
        target_->clicked = std::move(clicked);
        item_.button.target = target_;
        item_.button.action = @selector(click:);
        item_.button.imagePosition = NSImageLeft;
    }
    ~StatusItem() override { [NSStatusBar.systemStatusBar removeStatusItem:item_]; }

    void show(const std::string& icon, const std::string& text) override {
        @autoreleasepool {
            NSImage* image = [[NSImage alloc] initWithData:[NSData dataWithBytes:icon.data()
                                                                          length:icon.size()]];
            image.size = NSMakeSize(18, 18);
            [image setTemplate:YES]; // the menu bar gives it its colour
            item_.button.image = image;
            NSString* const title = [NSString stringWithUTF8String:text.c_str()];
            item_.button.title = title ? title : @"";
        }
    }

    [[nodiscard]] bool isThere() const override { return true; }

    [[nodiscard]] std::optional<Place> place() const override {
        NSWindow* const window = item_.button.window;
        NSScreen* const first = NSScreen.screens.firstObject;
        if (!window || !first)
            return std::nullopt;
        // There the lower left corner is the origin.
        const NSRect there = window.frame;
        const auto height = first.frame.size.height;
        return Place{.x = static_cast<int>(there.origin.x),
                     .y = static_cast<int>(height - there.origin.y - there.size.height),
                     .width = static_cast<int>(there.size.width),
                     .height = static_cast<int>(there.size.height)};
    }

private:
    KorvantiStatusItemTarget* target_ = [[KorvantiStatusItemTarget alloc] init];
    NSStatusItem* item_ = [NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength];
};

} // namespace

std::unique_ptr<MenuBarItem> systemMenuBarItem(MenuBarItem::Clicked clicked) {
    return std::make_unique<StatusItem>(std::move(clicked));
}

} // namespace korvanti
