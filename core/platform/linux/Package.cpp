#include "base/Text.h"
#include "platform/Platform.h"
#include "platform/linux/PackageExtensions.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace korvanti::Platform {

bool isPackage(const std::string& path) {
    const auto extension = Text::lowercased(std::string_view(path).substr(path.rfind('.') + 1));
    return std::ranges::find(packageExtensions, extension) != std::end(packageExtensions);
}

} // namespace korvanti::Platform
