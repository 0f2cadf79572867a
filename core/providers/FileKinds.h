#pragma once

#include <set>
#include <string_view>
#include <vector>

/// What the extension of a file says about it, plain data. All are compared with the lower-cased extension.
namespace korvanti::FileKinds {

using Extensions = std::set<std::string_view>;

/// What is not needed any more once the application is installed.
[[nodiscard]] const Extensions& installers();
[[nodiscard]] const Extensions& archivesAndPackages();

struct Kind {
    std::string_view label;
    Extensions extensions;
};
/// The kinds of large files, to be tried in this order.
[[nodiscard]] const std::vector<Kind>& largeFiles();
/// The label of a file that is of none of them.
inline constexpr std::string_view otherLabel = "File";

} // namespace korvanti::FileKinds
