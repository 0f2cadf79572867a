#include "cleaning/Trash.h"

#include "platform/Platform.h"

namespace korvanti::Trash {

std::expected<void, FileError> move(const AdmittedEntry& admitted, const std::string& home) {
    const PinnedEntry& entry = admitted.entry();
    return Platform::moveToTrash({.folder = entry.parent(),
                                  .name = entry.name(),
                                  .path = entry.path(),
                                  .identity = entry.identity(),
                                  .home = home});
}

} // namespace korvanti::Trash
