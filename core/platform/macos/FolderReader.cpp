#include "base/CheckedMath.h"
#include "base/SystemCall.h"
#include "platform/EntryKinds.h"
#include "platform/Platform.h"

#include "platform/macos/WithoutFetching.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/attr.h>
#include <sys/stat.h>
#include <unistd.h>

namespace korvanti::Platform {
namespace {

// VREG, VDIR and VLNK, the object types of <sys/vnode.h>.
constexpr fsobj_type_t regularType = 1;
constexpr fsobj_type_t folderType = 2;
constexpr fsobj_type_t linkType = 5;

EntryKind kindOfType(fsobj_type_t type) {
    switch (type) {
    case regularType:
        return EntryKind::file;
    case folderType:
        return EntryKind::folder;
    case linkType:
        return EntryKind::link;
    default:
        return EntryKind::other;
    }
}

bool isDotEntry(std::string_view name) {
    return name == "." || name == "..";
}

/// The folder lies in a cloud only, or was removed in the meantime: nothing of it is on this disk, so nothing
/// stays unread.
bool isNotOnDisk(int error) {
    return error == EDEADLK || error == ENOENT;
}

/// Fields of a record are aligned to 4 bytes only, whatever their size.
template <class Field> Field take(const char*& at) {
    Field field;
    std::memcpy(&field, at, sizeof field);
    at += sizeof field;
    return field;
}

/// What the Finder keeps about a file or a folder, as it stands on the disk.
struct FinderInfo {
    unsigned char before[8];
    unsigned char flags[2]; ///< the high byte first
    unsigned char behind[22];

    // kIsInvisible and kHasBundle, bits of the high byte.
    [[nodiscard]] bool invisible() const { return (flags[0] & 0x40) != 0; }
    [[nodiscard]] bool bundle() const { return (flags[0] & 0x20) != 0; }
};
static_assert(sizeof(FinderInfo) == 32);

/// What is taken from each entry, and so the fields of a record, in the order of their bits.
attrlist attributesFor(EntryFacts facts) {
    attrlist wanted{};
    wanted.bitmapcount = ATTR_BIT_MAP_COUNT;
    wanted.commonattr = ATTR_CMN_RETURNED_ATTRS | ATTR_CMN_NAME | ATTR_CMN_ERROR | ATTR_CMN_OBJTYPE;
    if (facts != EntryFacts::names) {
        wanted.commonattr |= ATTR_CMN_MODTIME;
        wanted.dirattr = ATTR_DIR_MOUNTSTATUS;
        wanted.fileattr = ATTR_FILE_ALLOCSIZE | ATTR_FILE_DATALENGTH;
    }
    if (facts == EntryFacts::everything)
        wanted.commonattr |= ATTR_CMN_FNDRINFO | ATTR_CMN_FLAGS;
    return wanted;
}

struct Record {
    FolderEntry entry;
    std::uint32_t length = 0; ///< to the next record
    std::uint32_t error = 0;  ///< why nothing but the name is told
};

Record parseRecord(const char* at) {
    Record record;
    record.length = take<std::uint32_t>(at);
    const auto returned = take<attribute_set_t>(at);
    if (returned.commonattr & ATTR_CMN_ERROR)
        record.error = take<std::uint32_t>(at);
    if (returned.commonattr & ATTR_CMN_NAME) {
        const char* start = at; // the offset counts from the reference itself, the length its zero byte
        const auto name = take<attrreference_t>(at);
        if (name.attr_length > 0)
            record.entry.name = std::string_view(start + name.attr_dataoffset, name.attr_length - 1);
    }
    if (returned.commonattr & ATTR_CMN_OBJTYPE)
        record.entry.kind = kindOfType(take<fsobj_type_t>(at));
    if (returned.commonattr & ATTR_CMN_MODTIME) {
        const auto modified = take<timespec>(at);
        record.entry.modifiedSeconds = modified.tv_sec;
        record.entry.modifiedNanoseconds = modified.tv_nsec;
    }
    if (returned.commonattr & ATTR_CMN_FNDRINFO) {
        const auto info = take<FinderInfo>(at);
        record.entry.hidden = info.invisible();
        record.entry.package = info.bundle() && record.entry.kind == EntryKind::folder;
    }
    if (returned.commonattr & ATTR_CMN_FLAGS)
        record.entry.hidden |= (take<std::uint32_t>(at) & UF_HIDDEN) != 0;
    // A record has the fields of a folder or those of anything else, never both.
    if (returned.dirattr & ATTR_DIR_MOUNTSTATUS)
        record.entry.mountPoint = (take<std::uint32_t>(at) & DIR_MNTSTATUS_MNTPOINT) != 0;
    if (returned.fileattr & ATTR_FILE_ALLOCSIZE)
        record.entry.allocatedBytes = take<off_t>(at);
    if (returned.fileattr & ATTR_FILE_DATALENGTH)
        record.entry.logicalBytes = take<off_t>(at);
    return record;
}

/// A listing of its own on the same folder, from the start. Null when there is none.
std::shared_ptr<void> openListing(int folder) {
    const int copy = ::fcntl(folder, F_DUPFD_CLOEXEC, 0);
    if (copy < 0)
        return nullptr;
    ::lseek(copy, 0, SEEK_SET);
    DIR* listing = ::fdopendir(copy);
    if (!listing) {
        ::close(copy);
        return nullptr;
    }
    return {listing, [](DIR* open) { ::closedir(open); }};
}

/// Kind, sizes, date and flags of one entry. False when it can't be asked.
bool askByName(int folder, const char* name, FolderEntry& entry) {
    struct stat info {};
    if (::fstatat(folder, name, &info, AT_SYMLINK_NOFOLLOW) != 0)
        return false;
    entry.kind = kindOfMode(info.st_mode);
    entry.modifiedSeconds = info.st_mtimespec.tv_sec;
    entry.modifiedNanoseconds = info.st_mtimespec.tv_nsec;
    entry.hidden = (info.st_flags & UF_HIDDEN) != 0;
    if (entry.kind != EntryKind::folder) {
        entry.allocatedBytes = multiplyChecked<std::int64_t>(info.st_blocks, 512);
        entry.logicalBytes = info.st_size;
    }
    return true;
}

/// The next entry of a plain listing; one that can't be asked is left out. False at its end, with `error` set
/// where it broke off.
bool nextListed(DIR* listing, int folder, EntryFacts facts, FolderEntry& entry, int& error) {
    const WithoutFetching guard;
    for (;;) {
        errno = 0;
        const dirent* listed = ::readdir(listing);
        if (!listed) {
            error = isNotOnDisk(errno) ? 0 : errno;
            return false;
        }
        entry = {.name = std::string_view(listed->d_name, listed->d_namlen)};
        if (isDotEntry(entry.name))
            continue;
        entry.kind = kindOfMode(static_cast<mode_t>(DTTOIF(listed->d_type)));
        const bool askFurther = facts == EntryFacts::everything ||
                                (facts == EntryFacts::sizes && entry.kind != EntryKind::folder);
        if ((!askFurther && listed->d_type != DT_UNKNOWN) || askByName(folder, listed->d_name, entry))
            return true;
    }
}

} // namespace

FolderReader::FolderReader(int folder, FolderBuffer& buffer, EntryFacts facts)
    : folder_(folder), buffer_(buffer), facts_(facts) {}

const FolderEntry* FolderReader::next() {
    while (filled_ > 0 || fill()) {
        const Record record = parseRecord(buffer_.bytes + position_);
        position_ += record.length;
        --filled_;
        if (record.entry.name.empty() || isDotEntry(record.entry.name))
            continue;
        entry_ = record.entry;
        // What the bulk could not tell is asked once more by name, which ends with a zero in the record.
        if (record.error != 0 && !askByName(folder_, entry_.name.data(), entry_) &&
            facts_ != EntryFacts::names)
            continue;
        return &entry_;
    }
    if (listing_ && nextListed(static_cast<DIR*>(listing_.get()), folder_, facts_, entry_, error_))
        return &entry_;
    return nullptr;
}

/// Fetches the next records. False when there are none: at the end, or where the plain listing takes over.
bool FolderReader::fill() {
    if (listing_ || error_ != 0)
        return false;
    attrlist wanted = attributesFor(facts_);
    const bool first = position_ == 0;
    const WithoutFetching guard;
    const int count = uninterrupted(
        [&] { return ::getattrlistbulk(folder_, &wanted, buffer_.bytes, FolderBuffer::capacity, 0); });
    if (count < 0 && !isNotOnDisk(errno)) {
        // Some file systems don't serve this call, and it asks for more rights than a list of names needs.
        const int error = errno;
        if (first)
            listing_ = openListing(folder_);
        error_ = listing_ ? 0 : error;
    }
    filled_ = count > 0 ? static_cast<std::size_t>(count) : 0;
    position_ = 0;
    return filled_ > 0;
}

} // namespace korvanti::Platform
