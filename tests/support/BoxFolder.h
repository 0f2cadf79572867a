#pragma once

#include "support/TempFolder.h"

#include <string>

namespace korvanti::testing {

/// A folder at a fixed place of the Mac in the box, such as "/Applications": empty at first, removed at the
/// end. Outside the box, where the place would be somebody's own, it ends the program.
class BoxFolder : public TempFolder {
public:
    explicit BoxFolder(const std::string& path);
};

/// The Mac in the box as one test finds it.
struct BoxMac {
    BoxFolder home{"/Users/tester"};
    BoxFolder applications{"/Applications"};
    BoxFolder privacy{"/Library/Application Support/com.apple.TCC"};

    /// An application with nothing but its bundle identifier.
    void installApplication(const std::string& name, const std::string& bundleIdentifier) const;
    /// The privacy database can be opened from now on.
    void grantFullDiskAccess() const;
};

} // namespace korvanti::testing
