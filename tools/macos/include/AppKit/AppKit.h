// GNUstep's AppKit, and what Apple's has besides.
#pragma once
#pragma GCC system_header
#include_next <AppKit/AppKit.h>

@interface NSWorkspace (AppleDeclarations)
- (void)recycleURLs:(NSArray<NSURL*>*)URLs
    completionHandler:(void (^)(NSDictionary<NSURL*, NSURL*>* newURLs, NSError* error))handler;
- (void)activateFileViewerSelectingURLs:(NSArray<NSURL*>*)fileURLs;
@property(readonly) BOOL accessibilityDisplayShouldReduceMotion;
@end
extern "C" NSNotificationName const NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification;

@interface NSImage (AppleDeclarations)
- (void)setTemplate:(BOOL)isTemplate;
@end

const NSBitmapImageFileType NSBitmapImageFileTypePNG = NSPNGFileType;
const NSCompositingOperation NSCompositingOperationCopy = NSCompositeCopy;

@interface NSStatusItem (AppleDeclarations)
@property(readonly, strong) NSStatusBarButton* button;
@end
