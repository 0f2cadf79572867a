// Calls every function of the port, so that linking this program for the Mac shows that each is there.
// tools/check-macos links it and holds it against Platform.h; run on a Mac, it prints what the port answers.
#include "platform/Platform.h"

#include <cstdio>
#include <memory>
#include <unistd.h>

using namespace korvanti;

namespace {

void printEntries(int folder, Platform::EntryFacts facts) {
    const auto buffer = std::make_unique<Platform::FolderBuffer>();
    Platform::FolderReader reader(folder, *buffer, facts);
    while (const auto* entry = reader.next())
        std::printf("%.*s kind %d, %lld bytes allocated, %lld long, modified %lld%s%s%s\n",
                    static_cast<int>(entry->name.size()), entry->name.data(), static_cast<int>(entry->kind),
                    static_cast<long long>(entry->allocatedBytes),
                    static_cast<long long>(entry->logicalBytes),
                    static_cast<long long>(entry->modifiedSeconds.value_or(0)),
                    entry->mountPoint ? ", mount point" : "", entry->hidden ? ", hidden" : "",
                    entry->package ? ", package" : "");
    if (reader.failed())
        std::puts("(broken off)");
}

/// Nothing goes to the Trash: there is no such entry, and none has such an identity.
void printPassages(const std::string& home) {
    const int passage = Platform::openPassage(home);
    const int inner = Platform::openPassageAt(passage, "Library");
    const auto held = Platform::holdEntryAt(passage, ".CFUserTextEncoding");
    std::printf("passages %d and %d, held %d\n", passage, inner, held ? held->get() : -held.error());
    const auto moved = Platform::moveToTrash({.folder = passage,
                                              .name = "korvanti nothing",
                                              .path = home + "/korvanti nothing",
                                              .identity = {},
                                              .home = home});
    std::printf("to the Trash: %s\n", moved ? "moved" : moved.error().description().c_str());
    ::close(inner);
    ::close(passage);
}

/// A file without a name, where there are such; the one that is flushed lies nowhere.
void printVolumes(const std::string& home) {
    for (const auto& volume : Platform::mountedVolumes())
        std::printf("volume %s at %s (%s): %s, %s, %lld of %lld bytes free\n",
                    volume.name.value_or("?").c_str(), volume.mountPath.c_str(), volume.fsType.c_str(),
                    volume.uuid.value_or("?").c_str(), volume.formatDescription.value_or("?").c_str(),
                    static_cast<long long>(volume.available.value_or(-1)),
                    static_cast<long long>(volume.total.value_or(-1)));
    const int file = Platform::openNamelessFile(home);
    Platform::bypassCache(file);
    std::printf("taken over: error %d\n", Platform::copyFolderFacts(file, file));
    std::printf("flushed: errors %d and %d\n", Platform::flushFile(file), Platform::flushVolume(file));
    ::close(file);
}

} // namespace

int main() {
    Platform::raiseOpenFileLimit();
    Platform::giveWay();
    const std::string home = Platform::homeFolder();
    std::printf("running %s\n", Platform::executablePath().c_str());
    const auto capacity = Platform::volumeCapacity(home);
    std::printf(
        "home %s, %lld of %lld bytes free (%lld for important use), swap %lld, memory %lld\n", home.c_str(),
        static_cast<long long>(capacity.available), static_cast<long long>(capacity.total),
        static_cast<long long>(capacity.availableImportant.value_or(-1)),
        static_cast<long long>(Platform::swapUsed()), static_cast<long long>(Platform::physicalMemory()));
    for (const auto& mount : Platform::mountPoints())
        std::printf("mounted at %s\n", mount.c_str());
    for (const auto* path : {"/Applications/Safari.app", "/System/Library/Frameworks/AppKit.framework"})
        std::printf("%s is %s package\n", path, Platform::isPackage(path) ? "a" : "no");

    const auto usage = Platform::applicationUsage("/Applications/Safari.app");
    std::printf("Safari: last used %lld, %lld times\n",
                static_cast<long long>(usage.lastUsed ? wholeSeconds(*usage.lastUsed) : -1),
                static_cast<long long>(usage.useCount.value_or(-1)));

    posix_spawnattr_t attributes{};
    posix_spawn_file_actions_t actions{};
    if (::posix_spawnattr_init(&attributes) == 0 && ::posix_spawn_file_actions_init(&actions) == 0)
        std::printf("only streams: error %d\n", Platform::inheritOnlyStreams(attributes, actions));

    const int folder = Platform::openFolder(home);
    if (folder < 0) {
        std::perror(home.c_str());
        return 1;
    }
    printEntries(folder, Platform::EntryFacts::everything);
    if (const auto identity = Platform::folderIdentity(folder))
        std::printf("device %llu, inode %llu\n", static_cast<unsigned long long>(identity->device),
                    static_cast<unsigned long long>(identity->inode));
    const int library = Platform::openFolderAt(folder, "Library");
    if (library >= 0) {
        printEntries(library, Platform::EntryFacts::names);
        ::close(library);
    }
    ::close(folder);
    printPassages(home);
    printVolumes(home);
    return 0;
}
