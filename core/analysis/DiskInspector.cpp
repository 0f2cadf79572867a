#include "analysis/DiskInspector.h"

#include "base/FileDescriptor.h"
#include "platform/Platform.h"

#include <fcntl.h>

namespace korvanti::DiskInspector {

DiskSnapshot snapshot(const std::string& home) {
    const auto capacity = Platform::volumeCapacity(home);
    DiskSnapshot disk;
    disk.total = capacity.total;
    disk.available = capacity.available;
    disk.availableImportant = capacity.availableImportant.value_or(capacity.available);
    disk.swapUsed = Platform::swapUsed();
    disk.physicalMemory = Platform::physicalMemory();
    disk.hasFullDiskAccess = hasFullDiskAccess();
    return disk;
}

bool hasFullDiskAccess() {
    constexpr auto privacyDatabase = "/Library/Application Support/com.apple.TCC/TCC.db";
    return static_cast<bool>(FileDescriptor(::open(privacyDatabase, O_RDONLY | O_NONBLOCK | O_CLOEXEC)));
}

} // namespace korvanti::DiskInspector
