#include "base/CheckedMath.h"
#include "base/SystemCall.h"
#include "platform/EntryKinds.h"
#include "platform/Platform.h"

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace korvanti::Platform {
namespace {

/// What getdents64 writes; the name and its zero follow the fixed fields.
struct Record {
    ino64_t inode;
    off64_t offset;
    unsigned short length;
    unsigned char type;
};
constexpr std::size_t nameOffset = offsetof(Record, type) + 1;

EntryKind kindOfType(unsigned char type) {
    constexpr unsigned char folder = 4, regular = 8, link = 10;
    if (type == regular)
        return EntryKind::file;
    if (type == folder)
        return EntryKind::folder;
    return type == link ? EntryKind::link : EntryKind::other;
}

} // namespace

FolderReader::FolderReader(int folder, FolderBuffer& buffer, EntryFacts facts)
    : folder_(folder), buffer_(buffer), facts_(facts) {}

bool FolderReader::fill() {
    const long count = uninterrupted(
        [&] { return ::syscall(SYS_getdents64, folder_, buffer_.bytes, FolderBuffer::capacity); });
    position_ = 0;
    filled_ = count > 0 ? static_cast<std::size_t>(count) : 0;
    if (count < 0 && errno != ENOENT) // a folder that was removed in the meantime is at its end
        error_ = errno;
    return count > 0;
}

const FolderEntry* FolderReader::next() {
    constexpr unsigned char unknownType = 0;
    while (position_ < filled_ || fill()) {
        const char* bytes = buffer_.bytes + position_;
        Record record;
        std::memcpy(&record, bytes, nameOffset);
        position_ += record.length;
        const char* name = bytes + nameOffset;
        if (std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0)
            continue;

        entry_ = {.name = name, .kind = kindOfType(record.type)};
        const bool unknown = record.type == unknownType;
        if (unknown || (facts_ != EntryFacts::names && entry_.kind != EntryKind::folder)) {
            struct stat facts {};
            if (::fstatat(folder_, name, &facts, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT) != 0) {
                if (facts_ != EntryFacts::names)
                    continue;
                return &entry_;
            }
            entry_.kind = kindOfMode(facts.st_mode);
            if (entry_.kind != EntryKind::folder) {
                entry_.allocatedBytes = multiplyChecked<std::int64_t>(facts.st_blocks, 512);
                entry_.logicalBytes = facts.st_size;
                entry_.modifiedSeconds = facts.st_mtim.tv_sec;
                entry_.modifiedNanoseconds = facts.st_mtim.tv_nsec;
            }
        }
        return &entry_;
    }
    return nullptr;
}

} // namespace korvanti::Platform
