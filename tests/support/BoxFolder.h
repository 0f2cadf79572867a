#pragma once

#include "support/TempFolder.h"

#include <string>
#include <vector>

namespace korvanti::testing {

/// A folder at a fixed place of the Mac in the box, such as "/Applications": empty at first, removed at the
/// end. Outside the box, where the place would be somebody's own, it ends the program.
class BoxFolder : public TempFolder {
public:
    explicit BoxFolder(const std::string& path);
};

/// The Mac in the box as one test finds it.
struct BoxMac {
    BoxMac();

    BoxFolder home{"/Users/tester"};
    BoxFolder applications{"/Applications"};
    BoxFolder privacy{"/Library/Application Support/com.apple.TCC"};
    BoxFolder answers{"/box/answers"};
    BoxFolder defaults{"/box/defaults"}; ///< what "defaults" remembers: a folder a domain, a file a key

    /// An application with nothing but its bundle identifier.
    void installApplication(const std::string& name, const std::string& bundleIdentifier) const;
    /// The privacy database can be opened from now on.
    void grantFullDiskAccess() const;

    /// What a stand-in says from now on, see `BoxAnswers`.
    static void answer(const std::string& call, const std::string& text, int status = 0);
    static void answerWithScript(const std::string& call, const std::string& script);
    /// The calls of all stand-ins since the start of this test: name and arguments.
    [[nodiscard]] static std::vector<std::string> calls();
};

} // namespace korvanti::testing
