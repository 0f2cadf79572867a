#include "Require.h"
#include "platform/linux/MountInfo.h"

/// The parser of the mount table: whatever the text, each mount point is absolute.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto text = textOf(data, size);
    for (const auto& point : korvanti::Platform::mountPointsFromMountInfo(text)) {
        require(point.starts_with('/'));
    }
    return 0;
}
