// GNUstep's Foundation, and what Apple's has besides.
#pragma once
#pragma GCC system_header
#include_next <Foundation/Foundation.h>

#include "../../AppleDeclarations.h"
