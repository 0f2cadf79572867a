#pragma once

namespace korvanti::testing {

/// Makes the Mac of ./demo in the box, with the disks that `disks` has plugged in: the lived-in Mac of the
/// tests in the sizes of life, its disk nearly full, tools that really do what they are asked, and what an
/// earlier use of the program has left. Throws when the system refuses, and outside of the box.
void makeDemoMac();

} // namespace korvanti::testing
