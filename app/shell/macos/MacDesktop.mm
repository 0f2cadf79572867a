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

Desktop::Result opening(BOOL done) {
    if (done)
        return {};
    return std::unexpected("macOS tidak bisa membukanya.");
}

NSRunningApplication* firstRunning(const InstalledApp& app) {
    NSString* identifier = app.bundleID ? [NSString stringWithUTF8String:app.bundleID->c_str()] : nil;
    return identifier ? [NSRunningApplication runningApplicationsWithBundleIdentifier:identifier].firstObject
                      : nil;
}

/// The picture as a file of that many pixels a side.
NSData* pngOf(NSImage* picture, int pixels) {
    NSBitmapImageRep* canvas = [[NSBitmapImageRep alloc] initWithBitmapDataPlanes:nullptr
                                                                       pixelsWide:pixels
                                                                       pixelsHigh:pixels
                                                                    bitsPerSample:8
                                                                  samplesPerPixel:4
                                                                         hasAlpha:YES
                                                                         isPlanar:NO
                                                                   colorSpaceName:NSDeviceRGBColorSpace
                                                                      bytesPerRow:0
                                                                     bitsPerPixel:0];
    NSGraphicsContext* context = canvas ? [NSGraphicsContext graphicsContextWithBitmapImageRep:canvas] : nil;
    if (!context)
        return nil;
    [NSGraphicsContext saveGraphicsState];
    NSGraphicsContext.currentContext = context;
    [picture drawInRect:NSMakeRect(0, 0, pixels, pixels)
               fromRect:NSZeroRect
              operation:NSCompositingOperationCopy
               fraction:1];
    [NSGraphicsContext restoreGraphicsState];
    return [canvas representationUsingType:NSBitmapImageFileTypePNG properties:[NSDictionary dictionary]];
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

    void openFullDiskAccessSettings(const Answer& answer) override {
        const BOOL opened = [NSWorkspace.sharedWorkspace
            openURL:[NSURL URLWithString:@"x-apple.systempreferences:com.apple.preference.security?"
                                         @"Privacy_AllFiles"]];
        [NSWorkspace.sharedWorkspace activateFileViewerSelectingURLs:@[ NSBundle.mainBundle.bundleURL ]];
        answer(opening(opened));
    }

    void reveal(const std::string& path, const Answer& answer) override {
        NSURL* url = urlOf(path);
        if (url)
            [NSWorkspace.sharedWorkspace activateFileViewerSelectingURLs:@[ url ]];
        answer(opening(url != nil));
    }

    void openFolder(const std::string& path, const Answer& answer) override {
        NSURL* url = urlOf(path);
        answer(opening(url && [NSWorkspace.sharedWorkspace openURL:url]));
    }

    [[nodiscard]] bool isRunning(const InstalledApp& app) const override { return firstRunning(app) != nil; }

    void askToEnd(const InstalledApp& app) override { [firstRunning(app) terminate]; }

    [[nodiscard]] std::string icon(const std::string& bundle, int pixels) const override {
        NSString* path = urlOf(bundle).path;
        NSData* picture = path ? pngOf([NSWorkspace.sharedWorkspace iconForFile:path], pixels) : nil;
        return picture ? std::string(static_cast<const char*>(picture.bytes), picture.length) : std::string();
    }

private:
    NSArray* observers_ = nil;
};

} // namespace

std::unique_ptr<Desktop> systemDesktop(const std::string& /*home*/) {
    return std::make_unique<MacDesktop>();
}

} // namespace korvanti
