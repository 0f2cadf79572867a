// Apple's ServiceManagement, as far as it is used: declared beside the rest.
#pragma once
#pragma GCC system_header
#import <Foundation/Foundation.h>
