// What our Objective-C++ uses of Apple's frameworks and GNUstep's headers lack, with the signatures that
// Apple documents. Read by tools/check-macos right behind GNUstep's <Foundation/Foundation.h>, never by a
// real build. Keep it to what is used, and copy each signature from Apple's documentation.
#pragma once

typedef NSString* NSURLResourceKey;

extern "C" NSURLResourceKey const NSURLVolumeAvailableCapacityForImportantUsageKey;

@interface NSURL (AppleDeclarations)
+ (NSURL*)fileURLWithFileSystemRepresentation:(const char*)path
                                  isDirectory:(BOOL)isDir
                                relativeToURL:(NSURL*)baseURL;
- (NSDictionary<NSURLResourceKey, id>*)resourceValuesForKeys:(NSArray<NSURLResourceKey>*)keys
                                                       error:(NSError**)error;
@end
