#include "ui/MotionWatch.h"

#import <AppKit/AppKit.h>

#include <utility>

#if !__has_feature(objc_arc)
#error "Compile with -fobjc-arc"
#endif

namespace korvanti {
namespace {

class MacMotionWatch : public MotionWatch {
public:
    explicit MacMotionWatch(Changed changed) {
        changed(NSWorkspace.sharedWorkspace.accessibilityDisplayShouldReduceMotion);
        observer_ = [NSWorkspace.sharedWorkspace.notificationCenter
            addObserverForName:NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification
                        object:nil
                         queue:NSOperationQueue.mainQueue
                    usingBlock:[changed = std::move(changed)](NSNotification*) {
                        changed(NSWorkspace.sharedWorkspace.accessibilityDisplayShouldReduceMotion);
                    }];
    }
    ~MacMotionWatch() override { [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:observer_]; }

private:
    id observer_;
};

} // namespace

std::unique_ptr<MotionWatch> watchMotion(MotionWatch::Changed changed) {
    return std::make_unique<MacMotionWatch>(std::move(changed));
}

} // namespace korvanti
