#include "shell/Desktop.h"

#import <AppKit/AppKit.h>
#import <ServiceManagement/ServiceManagement.h>

#include <utility>

#if !__has_feature(objc_arc)
#error "Compile with -fobjc-arc"
#endif

namespace korvanti {
namespace {

/// Absent for what can't be a path.
NSURL* urlOf(const std::string& path) {
    return path.empty()
               ? nil
               : [NSURL fileURLWithFileSystemRepresentation:path.c_str() isDirectory:NO relativeToURL:nil];
}

Desktop::Result resultOf(BOOL done, NSError* error) {
    if (done)
        return {};
    const char* const text = error.localizedDescription.UTF8String;
    return std::unexpected(std::string(text ? text : ""));
}

class MacDesktop : public Desktop {
public:
    ~MacDesktop() override {
        for (id observer in observers_)
            [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:observer];
    }

    void recycle(const std::string& path, const Answer& answer) override {
        NSURL* url = urlOf(path);
        if (!url) {
            [NSOperationQueue.mainQueue addOperationWithBlock:^{
              answer(resultOf(NO, nil));
            }];
            return;
        }
        [NSWorkspace.sharedWorkspace recycleURLs:@[ url ]
                               completionHandler:^(NSDictionary<NSURL*, NSURL*>*, NSError* error) {
                                 [NSOperationQueue.mainQueue addOperationWithBlock:^{
                                   answer(resultOf(error == nil, error));
                                 }];
                               }];
    }

    void watchMounts(std::function<void()> changed) override {
        NSMutableArray* observers = [NSMutableArray array];
        for (NSString* name in @[ NSWorkspaceDidMountNotification, NSWorkspaceDidUnmountNotification ])
            [observers addObject:[NSWorkspace.sharedWorkspace.notificationCenter
                                     addObserverForName:name
                                                 object:nil
                                                  queue:NSOperationQueue.mainQueue
                                             usingBlock:^(NSNotification*) {
                                               changed();
                                             }]];
        observers_ = observers;
    }

    [[nodiscard]] bool isLoginItem() const override {
        return SMAppService.mainAppService.status == SMAppServiceStatusEnabled;
    }

    Result setLoginItem(bool enabled) override {
        SMAppService* service = SMAppService.mainAppService;
        NSError* error = nil;
        const BOOL done =
            enabled ? [service registerAndReturnError:&error] : [service unregisterAndReturnError:&error];
        return resultOf(done, error);
    }

    void openFullDiskAccessSettings() override {
        [NSWorkspace.sharedWorkspace
            openURL:[NSURL URLWithString:@"x-apple.systempreferences:com.apple.preference.security?"
                                         @"Privacy_AllFiles"]];
        [NSWorkspace.sharedWorkspace activateFileViewerSelectingURLs:@[ NSBundle.mainBundle.bundleURL ]];
    }

    void reveal(const std::string& path) override {
        if (NSURL* url = urlOf(path))
            [NSWorkspace.sharedWorkspace activateFileViewerSelectingURLs:@[ url ]];
    }

    void openFolder(const std::string& path) override {
        if (NSURL* url = urlOf(path))
            [NSWorkspace.sharedWorkspace openURL:url];
    }

private:
    NSArray* observers_ = nil;
};

} // namespace

std::unique_ptr<Desktop> systemDesktop(const std::string& /*home*/) {
    return std::make_unique<MacDesktop>();
}

} // namespace korvanti
