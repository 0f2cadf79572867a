#include "drives/VolumeService.h"

#include "base/FileDescriptor.h"
#include "support/BoxFolder.h"
#include "support/Mount.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace korvanti {
namespace {

using testing::BoxFolder;
using testing::BoxMac;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::Mount;
using testing::textOf;

std::string infoCall(const std::string& mountPath) {
    return "diskutil info -plist " + mountPath;
}

std::string sample(const std::string& name) {
    return textOf(KORVANTI_TEST_DATA "/" + name);
}

/// A file system from a source of any name; to be unmounted by hand.
void mountOver(const std::string& source, const std::string& point, const char* type = "tmpfs") {
    ASSERT_EQ(::mount(source.c_str(), point.c_str(), type, 0, nullptr), 0) << errno;
}

class VolumeServiceMountTests : public ::testing::Test {
protected:
    static dev_t deviceOf(const std::string& mountPath) {
        struct stat facts {};
        EXPECT_EQ(::stat(mountPath.c_str(), &facts), 0);
        return facts.st_dev;
    }
    static std::string numberOf(dev_t device) { return fmt::format("{}:{}", major(device), minor(device)); }
    void know(dev_t device, const std::string& record) const {
        database.file("b" + numberOf(device), {.text = record});
    }
    static std::vector<std::string> paths() {
        std::vector<std::string> paths;
        for (const auto& volume : VolumeService::externalVolumes())
            paths.push_back(volume.mountPath);
        return paths;
    }
    static Platform::MountedVolume mounted(const std::string& path) {
        const auto volumes = Platform::mountedVolumes();
        const auto found = std::ranges::find(volumes, path, &Platform::MountedVolume::mountPath);
        return found == volumes.end() ? Platform::MountedVolume() : *found;
    }

    BoxMac mac;
    BoxFolder volumes{"/Volumes"};
    BoxFolder database{"/run/udev/data"};
};

TEST_F(VolumeServiceMountTests, withNothingBelowVolumesThereAreNone) {
    EXPECT_THAT(VolumeService::externalVolumes(), IsEmpty());
    EXPECT_THAT(BoxMac::calls(), IsEmpty());
}

TEST_F(VolumeServiceMountTests, aVolumeIsWhatThePlatformAndTheToolTellOfIt) {
    const auto path = volumes.folder("Kerja");
    const Mount mount(path, 4096 * 1000);
    volumes.file("Kerja/file", {.text = std::string(4096 * 100, 'x')});
    know(deviceOf(path), "E:ID_FS_LABEL_ENC=Kerja\\x20Lama\nE:ID_FS_UUID=4f21-00ab\n");
    mac.answer(infoCall(path), sample("diskutil-info-external-apfs.plist"));

    EXPECT_THAT(VolumeService::externalVolumes(),
                ElementsAre(VolumeInfo{.name = "Kerja Lama",
                                       .mountPath = "/Volumes/Kerja",
                                       .uuid = "4f21-00ab",
                                       .formatName = "APFS (Case-sensitive)",
                                       .fsType = "apfs",
                                       .isInternal = false,
                                       .isEjectable = true,
                                       .total = 4'096'000,
                                       .free = 3'686'400,
                                       .busProtocol = "USB",
                                       .solidState = true,
                                       .ownersEnabled = false,
                                       .encrypted = true,
                                       .smart = SmartInfo{.status = "Not Supported"},
                                       .deviceIdentifier = "disk6s1"}));
    EXPECT_THAT(BoxMac::calls(), ElementsAre(infoCall(path)));
}

TEST_F(VolumeServiceMountTests, aVolumeThatTheToolDoesNotKnowIsListedAllTheSame) {
    const auto path = volumes.folder("Kerja");
    const Mount mount(path, 4096 * 1000);
    mac.answer(infoCall(path), sample("diskutil-info-external-apfs.plist"), 1);

    EXPECT_THAT(VolumeService::externalVolumes(), ElementsAre(VolumeInfo{.name = "Kerja",
                                                                         .mountPath = "/Volumes/Kerja",
                                                                         .formatName = "tmpfs",
                                                                         .fsType = "tmpfs",
                                                                         .isEjectable = true,
                                                                         .total = 4'096'000,
                                                                         .free = 4'096'000}));
}

TEST_F(VolumeServiceMountTests, onlyWhatIsMountedBelowVolumesIsListed) {
    const Mount beside(mac.home.folder("Volumes/X"));
    const Mount inside(volumes.folder("A"));
    const Mount deeper(volumes.folder("B/C"));
    volumes.folder("NotMounted");
    EXPECT_THAT(paths(), ElementsAre("/Volumes/A", "/Volumes/B/C"));
}

TEST_F(VolumeServiceMountTests, volumesItselfIsNone) {
    const Mount mount(volumes.path());
    EXPECT_THAT(paths(), IsEmpty());
}

TEST_F(VolumeServiceMountTests, theOrderIsThatOfThePlatform) {
    const Mount third(volumes.folder("C"));
    const Mount first(volumes.folder("A"));
    const Mount second(volumes.folder("B"));
    std::vector<std::string> inOrder;
    for (const auto& point : Platform::mountPoints())
        if (point.starts_with("/Volumes/"))
            inOrder.push_back(point);
    EXPECT_EQ(inOrder.size(), 3U);
    EXPECT_EQ(paths(), inOrder);
}

TEST_F(VolumeServiceMountTests, oddNamesComeThroughAsTheyAre) {
    for (const auto* name : {"Kerja Lama", "a\nb\tc\\d", "\xFF\xFE", "-plist", "\"$(id)\"", "#1"}) {
        const auto path = volumes.folder(name);
        const Mount mount(path);
        const auto found = VolumeService::externalVolumes();
        ASSERT_EQ(found.size(), 1U) << name;
        EXPECT_EQ(found[0].mountPath, path);
        EXPECT_EQ(found[0].name, name);
    }
}

TEST_F(VolumeServiceMountTests, ofTwoMountsOnOnePointTheUpperOneIsTheVolume) {
    const auto path = volumes.folder("Kerja");
    const Mount lower(path, 4096 * 1000);
    const Mount upper(path, 4096 * 2000);
    const auto found = VolumeService::externalVolumes();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].total, 4096 * 2000);
}

TEST_F(VolumeServiceMountTests, aVolumeThatAnotherMountHidesIsNotListed) {
    const auto path = volumes.folder("A/B");
    const Mount hidden(path);
    const Mount cover(volumes.path("A"));
    volumes.folder("A/B"); // the same name, but nothing is mounted there
    EXPECT_THAT(paths(), ElementsAre("/Volumes/A"));
}

TEST_F(VolumeServiceMountTests, aFolderShownAtASecondPlaceIsAVolume) {
    const Mount mount(mac.home.folder("Project"), volumes.folder("Kerja"));
    EXPECT_THAT(paths(), ElementsAre("/Volumes/Kerja"));
}

TEST_F(VolumeServiceMountTests, whatTheKernelOnlyShowsAsFilesIsNoVolume) {
    const auto path = volumes.folder("Proc");
    mountOver("none", path, "proc");
    EXPECT_THAT(paths(), IsEmpty());
    EXPECT_EQ(::umount2(path.c_str(), MNT_DETACH), 0);
}

TEST_F(VolumeServiceMountTests, theStartUpVolumeIsNeverListed) {
    EXPECT_EQ(mounted("/").isRootFileSystem, true);
    const Mount mount(volumes.folder("Kerja"));
    EXPECT_EQ(mounted("/Volumes/Kerja").isRootFileSystem, false);
}

/// A share whose server is there and never says a word: who asks it anything waits for ever.
class DeadShareTests : public VolumeServiceMountTests {
protected:
    void SetUp() override {
        const auto options = "fd=" + std::to_string(server.get()) + ",rootmode=40000,user_id=0,group_id=0";
        if (!server || ::mount("host:/folder", path.c_str(), "fuse.sshfs", 0, options.c_str()) != 0)
            GTEST_SKIP() << "no such file systems here";
    }
    void TearDown() override {
        server.reset(); // from now on it fails
        ::umount2(path.c_str(), MNT_DETACH);
    }

    const std::string path = volumes.folder("Share");
    Mount local{path};
    std::string inside = volumes.folder("Share/Disk");
    Mount disk{inside};
    FileDescriptor server{::open("/dev/fuse", O_RDWR | O_CLOEXEC)};
};

TEST_F(DeadShareTests, theShareIsToldAndNotAsked) {
    EXPECT_EQ(mounted(path),
              (Platform::MountedVolume{
                  .mountPath = path, .fsType = "fuse.sshfs", .isLocal = false, .isRootFileSystem = false}));
}

TEST_F(DeadShareTests, neitherTheShareNorWhatItHidesIsListed) {
    EXPECT_THAT(paths(), IsEmpty());
}

// The device

/// A device that is there by its number only: nothing opens it.
class VolumeDeviceMountTests : public VolumeServiceMountTests {
protected:
    static constexpr const char* block = "/dev/korvanti-disk";
    const dev_t device = makedev(7, 4711);

    void SetUp() override {
        if (::mknod("/dev/null", S_IFCHR | 0666, makedev(1, 3)) != 0 || // which the tools need
            ::mknod(block, S_IFBLK | 0600, device) != 0)
            GTEST_SKIP() << "no devices can be made here";
        mountOver(block, volumes.path("Kerja"));
    }
    void TearDown() override { ::umount2(volumes.path("Kerja").c_str(), MNT_DETACH); }

    /// The device hangs there, as the system shows its hardware: the last folder is the partition.
    void hangs(const std::string& way) const {
        const auto folder = hardware.folder(way);
        std::filesystem::create_directory_symlink(folder, "/sys/dev/block/" + numberOf(device));
    }

    const std::string path = volumes.folder("Kerja");
    BoxFolder hardware{"/tmp/hardware"};
    Mount devices{"/dev"};
    Mount numbers{"/sys/dev/block"};
};

TEST_F(VolumeDeviceMountTests, theDeviceIsTheOneThatIsNamedAsSource) {
    know(device, "E:ID_FS_LABEL_ENC=Nama\nE:ID_FS_UUID=aa-1\n");
    EXPECT_EQ(mounted(path).name, "Nama");
    EXPECT_EQ(mounted(path).uuid, "aa-1");
}

TEST_F(VolumeDeviceMountTests, theLinksToTheDeviceStandInForTheDatabase) {
    std::filesystem::create_directories("/dev/disk/by-label");
    std::filesystem::create_directories("/dev/disk/by-uuid");
    std::filesystem::create_symlink("../../null", "/dev/disk/by-label/Lain");
    std::filesystem::create_symlink("../../gone", "/dev/disk/by-label/Hilang");
    std::filesystem::create_symlink("../../korvanti-disk", "/dev/disk/by-label/Kerja\\x20Lama");
    std::filesystem::create_symlink("../../korvanti-disk", "/dev/disk/by-uuid/4F21-00AB");
    EXPECT_EQ(mounted(path).name, "Kerja Lama");
    EXPECT_EQ(mounted(path).uuid, "4F21-00AB");

    know(device, "E:ID_FS_LABEL_ENC=Nama\n");
    EXPECT_EQ(mounted(path).name, "Nama");
    EXPECT_EQ(mounted(path).uuid, "4F21-00AB");
}

TEST_F(VolumeDeviceMountTests, whereNothingIsKnownOfTheDeviceNothingIsTold) {
    const auto volume = mounted(path);
    EXPECT_EQ(volume.name, std::nullopt);
    EXPECT_EQ(volume.uuid, std::nullopt);
    EXPECT_EQ(volume.isInternal, std::nullopt);
    EXPECT_EQ(volume.isEjectable, std::nullopt);
    EXPECT_EQ(volume.isRemovable, std::nullopt);
    EXPECT_EQ(volume.formatDescription, std::nullopt);
}

TEST_F(VolumeDeviceMountTests, whatHangsOnUsbIsOutsideAndEjects) {
    hangs("pci0000:00/usb2/2-1/block/sdb/sdb1");
    hardware.file("pci0000:00/usb2/2-1/block/sdb/removable", {.text = "0\n"});
    const auto volume = mounted(path);
    EXPECT_EQ(volume.isInternal, false);
    EXPECT_EQ(volume.isEjectable, true);
    EXPECT_EQ(volume.isRemovable, false);
}

TEST_F(VolumeDeviceMountTests, theDiskTellsForItsPartitionThatItIsRemovable) {
    hangs("pci0000:00/ata1/block/sdb/sdb1");
    hardware.file("pci0000:00/ata1/block/sdb/removable", {.text = "1\n"});
    EXPECT_EQ(mounted(path).isRemovable, true);
    EXPECT_EQ(mounted(path).isInternal, std::nullopt);
}

TEST_F(VolumeDeviceMountTests, aWholeDiskTellsForItself) {
    hangs("pci0000:00/ata1/block/sdb");
    hardware.file("pci0000:00/ata1/block/sdb/removable", {.text = "0\n"});
    hardware.file("pci0000:00/ata1/block/removable", {.text = "1\n"});
    EXPECT_EQ(mounted(path).isRemovable, false);
}

TEST_F(VolumeDeviceMountTests, aDeviceMadeOfAFileTellsNoHardware) {
    hangs("virtual/block/loop7");
    hardware.file("virtual/block/loop7/removable", {.text = "0\n"});
    EXPECT_EQ(mounted(path).isRemovable, std::nullopt);
    EXPECT_TRUE(VolumeService::externalVolumes().at(0).isEjectable);
}

// Finding one

TEST_F(VolumeServiceMountTests, aVolumeIsFoundByItsUuidAsItIsWritten) {
    const auto one = volumes.folder("Satu");
    const auto two = volumes.folder("Dua");
    const Mount mountOne(one);
    const Mount mountTwo(two);
    know(deviceOf(one), "E:ID_FS_UUID=aa-1\n");
    know(deviceOf(two), "E:ID_FS_UUID=aa-2\n");

    EXPECT_EQ(VolumeService::volume("aa-2")->mountPath, two);
    EXPECT_EQ(VolumeService::volume("aa-1")->mountPath, one);
    EXPECT_EQ(VolumeService::volume("AA-1"), std::nullopt);
    EXPECT_EQ(VolumeService::volume("aa-3"), std::nullopt);
    EXPECT_EQ(VolumeService::volume(""), std::nullopt);
}

TEST_F(VolumeServiceMountTests, ofTwoVolumesWithOneUuidTheFirstIsFound) {
    const auto one = volumes.folder("Satu");
    const auto two = volumes.folder("Dua");
    const Mount mountOne(one);
    const Mount mountTwo(two);
    know(deviceOf(one), "E:ID_FS_UUID=aa\n");
    know(deviceOf(two), "E:ID_FS_UUID=aa\n");
    EXPECT_EQ(VolumeService::volume("aa")->mountPath, paths().at(0));
}

TEST_F(VolumeServiceMountTests, aVolumeWithoutAUuidIsNeverFound) {
    const Mount mount(volumes.folder("Kerja"));
    const auto found = VolumeService::externalVolumes();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].id(), "/Volumes/Kerja");
    EXPECT_EQ(VolumeService::volume(found[0].id()), std::nullopt);
    EXPECT_EQ(VolumeService::volume(""), std::nullopt);
}

TEST_F(VolumeServiceMountTests, noUuidIsNoVolumeAndNothingIsListed) {
    const Mount mount(volumes.folder("Kerja"));
    EXPECT_EQ(VolumeService::volume(std::nullopt), std::nullopt);
    EXPECT_THAT(BoxMac::calls(), IsEmpty());
}

// Ejecting

TEST_F(VolumeServiceMountTests, ejectingAsksTheToolAndGivesItsAnswer) {
    mac.answer("diskutil eject /Volumes/Kerja Lama", "Disk /Volumes/Kerja Lama ejected\n");
    const auto result =
        VolumeService::eject({.mountPath = "/Volumes/Kerja Lama", .deviceIdentifier = "disk6s1"});
    EXPECT_EQ(result, (ShellResult{.status = 0, .out = "Disk /Volumes/Kerja Lama ejected\n", .err = ""}));
    EXPECT_THAT(BoxMac::calls(), ElementsAre("diskutil eject /Volumes/Kerja Lama"));
}

TEST_F(VolumeServiceMountTests, aDriveInUseStaysAndTheToolSaysWhy) {
    mac.answerWithScript("diskutil eject /Volumes/Kerja", "echo 'in use by process 42' >&2; exit 1");
    const auto result = VolumeService::eject({.mountPath = "/Volumes/Kerja"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "in use by process 42\n");
}

TEST_F(VolumeServiceMountTests, ejectingAddsNothingToTheEnvironment) {
    mac.answerWithScript("diskutil eject /Volumes/Kerja",
                         "env | grep -v -e ^PWD= -e ^_= -e ^SHLVL= -e ^OLDPWD=");
    const auto result = VolumeService::eject({.mountPath = "/Volumes/Kerja"});
    const auto plain = Shell::run("/bin/sh", {"-c", "env | grep -v -e ^PWD= -e ^_= -e ^SHLVL= -e ^OLDPWD="});
    EXPECT_EQ(result.out, plain.out);
    EXPECT_FALSE(result.out.empty());
}

} // namespace
} // namespace korvanti
