// GNUstep's headers ask for this one, which Apple's runtime has not got. Nothing in it is needed.
#pragma once
