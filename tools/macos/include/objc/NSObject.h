// Apple's <os/object.h> asks for the root class here. There must be only one: GNUstep's.
#pragma once
#pragma GCC system_header
#import <Foundation/NSObject.h>
