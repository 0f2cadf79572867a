#include "platform/linux/MountInfo.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

/// The parser of the mount table: whatever the text, each mount point is absolute.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    for (const auto& point : korvanti::Platform::mountPointsFromMountInfo(text)) {
        if (!point.starts_with('/'))
            std::abort();
    }
    return 0;
}
