#include "drives/OffloadService.h"

#include "base/ByteText.h"
#include "fs/FileContents.h"
#include "fs/PathTools.h"
#include "fs/SizeCalculator.h"
#include "support/BeforeCall.h"
#include "support/BoxFolder.h"
#include "support/Mount.h"
#include "support/RunProgram.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <utility>
#include <variant>
#include <vector>

/// Needs the right to mount: runs in the box as root. The volumes are memory file systems that are told to be
/// of the Mac's formats.
namespace korvanti {
namespace {

using testing::BoxFolder;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::Mount;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;
using testing::textOf;
using Kind = OffloadError::Kind;

constexpr const char* uuid = "11111111-2222-4333-8444-555555555555";
constexpr const char* symbols = "Library/Developer/Xcode/iOS DeviceSupport";

/// Each entry at and below a path with its rights and what is in it.
using Tree = std::map<std::string, std::string>;

void add(Tree& tree, const std::string& path, const std::string& relative) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0)
        return;
    auto& facts = tree[relative] = std::to_string(status.st_mode) + " ";
    if (S_ISLNK(status.st_mode))
        facts += std::filesystem::read_symlink(path).string();
    else if (S_ISREG(status.st_mode))
        facts += status.st_size > 1'000'000 ? std::to_string(status.st_size) : textOf(path);
    if (!S_ISDIR(status.st_mode))
        return;
    for (const auto& entry : std::filesystem::directory_iterator(path)) {
        const auto name = "/" + entry.path().filename().string();
        add(tree, path + name, relative + name);
    }
}

Tree treeOf(const std::string& path) {
    Tree tree;
    add(tree, path, {});
    return tree;
}

/// All that stood there still stands, as it was; there may be more.
bool holds(const Tree& after, const Tree& before) {
    return std::ranges::all_of(before, [&](const auto& entry) {
        const auto found = after.find(entry.first);
        return found != after.end() && found->second == entry.second;
    });
}

std::string description(const std::expected<void, DriveFailure>& result) {
    return result ? "" : description(result.error());
}
std::string description(const std::expected<OffloadRecord, DriveFailure>& result) {
    return result ? "" : description(result.error());
}

template <class Result> std::optional<Kind> kindOf(const Result& result) {
    const auto* own = result ? nullptr : std::get_if<OffloadError>(&result.error());
    return own ? std::optional(own->kind) : std::nullopt;
}

template <class Result> bool isRefusedByTheGuard(const Result& result) {
    return !result && std::holds_alternative<GuardError>(result.error());
}

/// The error number of the system; 0 for any other answer.
template <class Result> int systemErrorOf(const Result& result) {
    const auto* error = result ? nullptr : std::get_if<FileError>(&result.error());
    return error ? error->code.value() : 0;
}

/// What ditto does besides, see tests/box/README.md.
void setDitto(const std::string& script) {
    std::ofstream("/box/ditto") << script << "\n";
}

class OffloadServiceMountTests : public ::testing::Test {
protected:
    OffloadServiceMountTests() {
        std::filesystem::remove("/box/ditto");
        volumes.folder("SSD");
        plugged.emplace(ssd);
        mac.home.folder("Library/Application Support/Korvanti");
    }

    ~OffloadServiceMountTests() override {
        plugged.reset();
        while (::umount2(ssd.c_str(), MNT_DETACH) == 0) { // what a test has mounted over it
        }
        std::filesystem::remove("/box/ditto");
    }

    /// A tree of four files, one of them a link, with 15 bytes in all.
    std::string source(const std::string& relative = symbols) const {
        mac.home.file(relative + "/17.4/info", {.text = "1234"});
        mac.home.file(relative + "/17.4/symbols", {.text = "567890"});
        mac.home.file(relative + "/18.0/info", {.text = "1"});
        if (!PathTools::exists(mac.home.path(relative + "/latest")))
            mac.home.symlink(relative + "/latest", "18.0");
        mac.home.folder(relative + "/empty");
        return mac.home.path(relative);
    }

    CleanupItem item(const std::string& path, ItemCategory category = ItemCategory::xcode) const {
        CleanupItem item;
        item.title = "Simbol perangkat";
        item.path = path;
        item.category = category;
        return item;
    }

    VolumeInfo volume(const std::string& fsType = "apfs") const {
        return {.name = "Kerja",
                .mountPath = ssd,
                .uuid = uuid,
                .formatName = fsType == "apfs" ? "APFS" : "Format " + fsType,
                .fsType = fsType,
                .free = 500 * GB};
    }

    std::expected<OffloadRecord, DriveFailure> offload(const CleanupItem& what, const VolumeInfo& where,
                                                       bool link = false) const {
        return service.offload(what, where, {.symlinkBack = link}, [](std::int64_t) {});
    }
    std::expected<OffloadRecord, DriveFailure> offload(const std::string& path, bool link = false) const {
        return offload(item(path), volume(), link);
    }

    /// The tree moved away, with its record.
    OffloadRecord moved(bool link = true) const {
        const auto result = offload(source(), link);
        EXPECT_TRUE(result) << description(result);
        return result.value_or(OffloadRecord{});
    }

    std::string onVolume(const std::string& relative = symbols) const {
        return ssd + "/Korvanti Offload/" + relative;
    }

    std::vector<ActivityEntry> logged() const { return ActivityLog(log).load(100); }

    void expectNothingDone() const {
        EXPECT_THAT(service.records(), IsEmpty());
        EXPECT_THAT(logged(), IsEmpty());
        EXPECT_FALSE(PathTools::exists(onVolume("manifest.json")));
    }

    /// The volume goes, and comes back as it was.
    void unplug() { ASSERT_EQ(::umount2(ssd.c_str(), MNT_DETACH), 0); }

    testing::BoxMac mac;
    BoxFolder volumes{"/Volumes"};
    std::string ssd = volumes.path("SSD");
    std::optional<Mount> plugged;
    std::string store = mac.home.path("Library/Application Support/Korvanti/offloads.json");
    std::string log = mac.home.path("Library/Application Support/Korvanti/activity.jsonl");
    OffloadService service{mac.home.path(), store, ActivityLog(log)};
};

// An offload that succeeds

TEST_F(OffloadServiceMountTests, aFolderFromHomeLandsAtItsPathBelowTheVolumesFolder) {
    const auto path = source();
    const auto tree = treeOf(path);
    const auto allocated = SizeCalculator::measure(path).bytes;
    const auto before = instantFromSeconds(wholeSeconds(currentInstant())); // a list keeps no fractions
    const auto record = offload(path);
    ASSERT_TRUE(record) << description(record);

    EXPECT_EQ(treeOf(onVolume()), tree);
    EXPECT_FALSE(PathTools::exists(path));
    EXPECT_EQ(record->title, "Simbol perangkat");
    EXPECT_EQ(record->originalPath, path);
    EXPECT_EQ(record->destinationPath,
              "/Volumes/SSD/Korvanti Offload/Library/Developer/Xcode/iOS DeviceSupport");
    EXPECT_EQ(record->volumeUUID, uuid);
    EXPECT_EQ(record->volumeName, "Kerja");
    EXPECT_EQ(record->bytes, allocated);
    EXPECT_GE(record->date, before);
    EXPECT_LE(record->date, currentInstant());
    EXPECT_FALSE(record->symlinked);
    EXPECT_THAT(mac.calls(), ElementsAre("ditto " + path + " " + record->destinationPath));
    EXPECT_EQ(OffloadService::status(*record), OffloadStatus::available);
}

TEST_F(OffloadServiceMountTests, aLinkIsLeftWhereItIsAskedFor) {
    const auto path = source();
    const auto record = offload(path, true);
    ASSERT_TRUE(record) << description(record);
    EXPECT_TRUE(record->symlinked);
    ASSERT_TRUE(PathTools::isSymlink(path));
    EXPECT_EQ(std::filesystem::read_symlink(path), record->destinationPath);
    EXPECT_EQ(textOf(path + "/18.0/info"), "1");
}

TEST_F(OffloadServiceMountTests, aSingleFileMovesToo) {
    const auto film = mac.home.file("Movies/film.mov", {.text = "film"});
    mac.home.file("Movies/other.mov");
    const auto record = offload(item(film, ItemCategory::personal), volume("exfat"));
    ASSERT_TRUE(record) << description(record);
    EXPECT_EQ(textOf(onVolume("Movies/film.mov")), "film");
    EXPECT_FALSE(PathTools::exists(film));
    EXPECT_TRUE(PathTools::exists(mac.home.path("Movies/other.mov")));
    const auto back = service.restore(*record);
    EXPECT_TRUE(back) << description(back);
    EXPECT_EQ(textOf(film), "film");
    EXPECT_FALSE(PathTools::exists(onVolume("Movies/film.mov")));
}

TEST_F(OffloadServiceMountTests, twoRecordsHaveTwoIds) {
    const auto one = offload(source());
    const auto two = offload(source("Library/Caches/x"));
    ASSERT_TRUE(one && two);
    EXPECT_NE(one->id, two->id);
    EXPECT_EQ(service.records().size(), 2U);
}

TEST_F(OffloadServiceMountTests, aNameThatIsTakenGetsTheNextNumberBehindTheWholePath) {
    volumes.file("SSD/Korvanti Offload/" + std::string(symbols));
    const auto second = offload(source());
    ASSERT_TRUE(second) << description(second);
    EXPECT_EQ(second->destinationPath, onVolume(symbols + std::string(" (2)")));
    const auto third = offload(source());
    ASSERT_TRUE(third) << description(third);
    EXPECT_EQ(third->destinationPath, onVolume(symbols + std::string(" (3)")));
    EXPECT_TRUE(PathTools::isDirectory(third->destinationPath));
}

TEST_F(OffloadServiceMountTests, aDanglingLinkTakesANameToo) {
    volumes.symlink("SSD/Korvanti Offload/" + std::string(symbols), "nowhere");
    const auto record = offload(source());
    ASSERT_TRUE(record) << description(record);
    EXPECT_EQ(record->destinationPath, onVolume(symbols + std::string(" (2)")));
    EXPECT_TRUE(PathTools::isSymlink(onVolume()));
}

TEST_F(OffloadServiceMountTests, personalFilesGoToAnyFormatWithThreeOptionsInOrder) {
    for (const std::string format : {"exfat", "msdos", "ntfs", ""}) {
        const auto path = source("Pictures/" + format + " 2024");
        const auto record = offload(item(path, ItemCategory::personal), volume(format));
        ASSERT_TRUE(record) << description(record);
        EXPECT_THAT(mac.calls(),
                    Contains("ditto --norsrc --noextattr --noacl " + path + " " + record->destinationPath));
    }
}

TEST_F(OffloadServiceMountTests, theMacsFormatsTakeEverythingWithoutOptions) {
    for (const std::string format : {"apfs", "hfs"}) {
        for (const auto category : allCases<ItemCategory>) {
            const auto path = source("Library/Caches/" + format + std::string(rawValue(category)));
            const auto record = offload(item(path, category), volume(format));
            ASSERT_TRUE(record) << description(record);
            EXPECT_THAT(mac.calls(), Contains("ditto " + path + " " + record->destinationPath));
        }
    }
}

// What is refused before anything is touched, in the order of the checks

TEST_F(OffloadServiceMountTests, aSourceThatIsNotThereIsMissing) {
    const auto result = offload(mac.home.path(symbols));
    EXPECT_EQ(kindOf(result), Kind::sourceMissing);
    EXPECT_EQ(description(result), "Data asal sudah tidak ada.");
    expectNothingDone();
}

TEST_F(OffloadServiceMountTests, theLinkOfAnEarlierOffloadIsNoSource) {
    const auto record = moved();
    const auto tree = treeOf(record.destinationPath);
    for (const auto& path : {record.originalPath, record.originalPath + "/"}) {
        const auto result = offload(path);
        EXPECT_FALSE(result);
        EXPECT_EQ(treeOf(record.destinationPath), tree);
        EXPECT_TRUE(PathTools::isSymlink(record.originalPath));
    }
    EXPECT_EQ(description(offload(record.originalPath)), "Data asal sudah tidak ada.");
    EXPECT_THAT(service.records(), ElementsAre(::testing::Field(&OffloadRecord::id, record.id)));
}

TEST_F(OffloadServiceMountTests, aRepositoryStays) {
    const auto path = source("Projects/app");
    mac.home.folder("Projects/app/.git");
    const auto result = offload(path);
    EXPECT_TRUE(isRefusedByTheGuard(result));
    EXPECT_EQ(description(result), "Ini repository git (kode sumber): ~/Projects/app");
    EXPECT_EQ(textOf(path + "/18.0/info"), "1");
    expectNothingDone();
}

TEST_F(OffloadServiceMountTests, whatTheGuardProtectsStays) {
    for (const std::string path : {"Projects", "Library/Caches", ".ssh/keys", "Library/Keychains/x",
                                   "Library/Mobile Documents/x", "Pictures/Fotos.photoslibrary"}) {
        const auto folder = source(path);
        const auto result = offload(folder);
        EXPECT_TRUE(isRefusedByTheGuard(result)) << path << ": " << description(result);
        EXPECT_EQ(textOf(folder + "/18.0/info"), "1");
    }
    const auto application = mac.applications.folder("Editor.app");
    const auto homeApplication = mac.home.folder("Applications/Editor.app/Contents");
    const auto outside = volumes.folder("SSD/photos/2024");
    for (const auto& path :
         {application, outside, mac.home.path("Library/../.ssh"), mac.home.path(), std::string("/")})
        EXPECT_TRUE(isRefusedByTheGuard(offload(path))) << path;
    expectNothingDone();
}

TEST_F(OffloadServiceMountTests, aFolderWithAVolumeInsideStays) {
    const auto path = source();
    const Mount inside(mac.home.folder(symbols + std::string("/volume")));
    mac.home.file(symbols + std::string("/volume/file"), {.text = "text"});
    EXPECT_TRUE(isRefusedByTheGuard(offload(path)));
    EXPECT_EQ(textOf(path + "/volume/file"), "text");
    expectNothingDone();
}

TEST_F(OffloadServiceMountTests, aPathThroughALinkIsNotMoved) {
    const auto real = source("Documents/real");
    mac.home.symlink("Library/link", mac.home.path("Documents"));
    const auto result = offload(mac.home.path("Library/link/real"));
    EXPECT_FALSE(result);
    EXPECT_EQ(textOf(real + "/18.0/info"), "1");
    expectNothingDone();
}

TEST_F(OffloadServiceMountTests, aVolumeThatIsNotThereIsMissing) {
    const auto path = source();
    volumes.file("file");
    volumes.symlink("link", ssd);
    for (const auto* name : {"nothing", "file", "link"}) {
        auto where = volume();
        where.mountPath = volumes.path(name);
        const auto result = offload(item(path), where);
        EXPECT_EQ(kindOf(result), Kind::volumeMissing) << name;
        EXPECT_EQ(description(result), "SSD tidak terpasang.");
    }
    EXPECT_EQ(textOf(path + "/18.0/info"), "1");
    expectNothingDone();
}

TEST_F(OffloadServiceMountTests, onlyPersonalFilesGoToAFormatWithoutLinksAndRights) {
    const auto path = source();
    for (const std::string format : {"exfat", "msdos", "ntfs", "APFS", "apfs ", ""}) {
        for (const auto category : allCases<ItemCategory>) {
            if (category == ItemCategory::personal)
                continue;
            const auto result = offload(item(path, category), volume(format));
            EXPECT_EQ(kindOf(result), Kind::unsupportedFormat) << format;
            EXPECT_EQ(
                description(result),
                format == "apfs"
                    ? ""
                    : "Format Format " + format +
                          " tidak aman untuk data dev (symlink & izin file hilang). Format SSD ke APFS, atau "
                          "pindahkan hanya foto/video.");
        }
    }
    EXPECT_EQ(textOf(path + "/18.0/info"), "1");
    EXPECT_THAT(mac.calls(), IsEmpty());
    expectNothingDone();
}

TEST_F(OffloadServiceMountTests, theChecksComeInTheirOrder) {
    auto bad = volume("exfat");
    bad.mountPath = volumes.path("nothing");
    EXPECT_EQ(kindOf(offload(item(mac.home.path("Projects/nothing")), bad)), Kind::sourceMissing);
    EXPECT_TRUE(isRefusedByTheGuard(offload(item(source("Projects")), bad)));
    EXPECT_EQ(kindOf(offload(item(source()), bad)), Kind::volumeMissing);
    auto full = volume("exfat");
    full.free = 0;
    plugged.reset();
    plugged.emplace(ssd, 4096);
    EXPECT_EQ(kindOf(offload(item(source()), full)), Kind::unsupportedFormat);
    full.fsType = "apfs";
    EXPECT_EQ(kindOf(offload(item(source()), full)), Kind::notEnoughSpace);
}

// Space

class OffloadSpaceMountTests : public OffloadServiceMountTests {
protected:
    /// Moves a file of that length to a volume with room for so many bytes that is told to have `free` ones.
    std::expected<OffloadRecord, DriveFailure> offloadSparse(std::int64_t length, std::int64_t room,
                                                             std::int64_t free) {
        plugged.reset();
        plugged.emplace(ssd, room);
        mac.home.file("Library/Caches/x/sparse", {.sparseBytes = length});
        auto where = volume();
        where.free = free;
        return offload(item(mac.home.path("Library/Caches/x")), where);
    }
};

TEST_F(OffloadSpaceMountTests, aTwentiethMoreAndFiftyMegabytesAreNeeded) {
    const auto result = offloadSparse(1'000'000'000, 4'096'000, 900'000'000);
    ASSERT_EQ(kindOf(result), Kind::notEnoughSpace);
    const auto error = std::get<OffloadError>(result.error());
    EXPECT_EQ(error.needed, 1'100'000'000);
    EXPECT_EQ(error.available, 900'000'000);
    EXPECT_EQ(description(result), "Ruang SSD kurang: perlu " + bytesText(1'100'000'000) + ", tersedia " +
                                       bytesText(900'000'000) + ".");
    EXPECT_TRUE(PathTools::exists(mac.home.path("Library/Caches/x/sparse")));
    expectNothingDone();
}

TEST_F(OffloadSpaceMountTests, theLargerOfTheTwoFiguresIsTold) {
    const auto result = offloadSparse(1'000'000'000, 81'920'000, 1);
    ASSERT_EQ(kindOf(result), Kind::notEnoughSpace);
    EXPECT_EQ(std::get<OffloadError>(result.error()).available, 81'920'000);
}

TEST_F(OffloadSpaceMountTests, theFigureOfTheVolumeMaySufficeAlone) {
    const auto result = offloadSparse(1'000'000'000, 900'000'000 / 4096 * 4096, 2'000'000'000);
    EXPECT_TRUE(result) << description(result);
}

TEST_F(OffloadSpaceMountTests, theFreshFigureMaySufficeAlone) {
    const auto result = offloadSparse(1000, 60'002'304, 0);
    EXPECT_TRUE(result) << description(result);
}

TEST_F(OffloadSpaceMountTests, theNeedIsCutToWholeBytesAndMayBeJustMet) {
    for (const auto& [length, needed] : {std::pair<std::int64_t, std::int64_t>{0, 50'000'000},
                                         {1, 50'000'001},
                                         {19, 50'000'019},
                                         {20, 50'000'021},
                                         {1'000'001, 51'050'001}}) {
        const auto refused = offloadSparse(length, 4'096'000, needed - 1);
        ASSERT_EQ(kindOf(refused), Kind::notEnoughSpace) << length;
        EXPECT_EQ(std::get<OffloadError>(refused.error()).needed, needed);
        const auto result = offloadSparse(length, 4'096'000, needed);
        EXPECT_TRUE(result) << length << description(result);
    }
}

// What fails on the way

TEST_F(OffloadServiceMountTests, whereNoFolderCanBeMadeNothingIsTouched) {
    const auto path = source();
    const auto tree = treeOf(path);
    volumes.file("SSD/Korvanti Offload", {.text = "file"});
    const auto result = offload(path);
    EXPECT_NE(systemErrorOf(result), 0);
    EXPECT_EQ(treeOf(path), tree);
    EXPECT_EQ(textOf(ssd + "/Korvanti Offload"), "file");
    EXPECT_THAT(mac.calls(), IsEmpty());
    EXPECT_THAT(service.records(), IsEmpty());
}

TEST_F(OffloadServiceMountTests, aFolderOfOursThatIsALinkIsNotGoneThrough) {
    const auto path = source();
    const auto tree = treeOf(path);
    const auto elsewhere = mac.home.folder("Documents/elsewhere");
    for (const auto* link : {"SSD/Korvanti Offload", "SSD/Korvanti Offload/Library"}) {
        volumes.symlink(link, elsewhere);
        EXPECT_NE(systemErrorOf(offload(path)), 0) << link;
        EXPECT_EQ(treeOf(path), tree);
        EXPECT_TRUE(std::filesystem::is_empty(elsewhere));
        std::filesystem::remove(volumes.path(link));
    }
}

TEST_F(OffloadServiceMountTests, aReadOnlyVolumeTakesNothing) {
    const auto path = source();
    const auto tree = treeOf(path);
    ASSERT_EQ(::mount("box", ssd.c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, nullptr), 0);
    EXPECT_EQ(systemErrorOf(offload(path)), EROFS);
    EXPECT_EQ(treeOf(path), tree);
    expectNothingDone();
}

TEST_F(OffloadServiceMountTests, aCopyThatFailsIsRemovedAndTheReasonIsTrimmed) {
    const auto path = source();
    const auto tree = treeOf(path);
    const auto* reason = "\\n \\tditto: cannot\\tcopy \\n\\n";
    for (const std::string& script :
         std::vector<std::string>{"before() { fail 1 $'" + std::string(reason) + "'; }",
                                  "middle() { fail 64 $'" + std::string(reason) + "'; }",
                                  "after() { fail 1 $'" + std::string(reason) + "'; }"}) {
        setDitto(script);
        const auto result = offload(path, true);
        EXPECT_EQ(kindOf(result), Kind::copyFailed);
        EXPECT_EQ(description(result), "Gagal menyalin: ditto: cannot\tcopy");
        EXPECT_EQ(treeOf(path), tree);
        EXPECT_FALSE(PathTools::exists(onVolume()));
        expectNothingDone();
    }
}

TEST_F(OffloadServiceMountTests, aToolThatIsKilledHasFailed) {
    const auto path = source();
    const auto tree = treeOf(path);
    setDitto("middle() { die; }");
    const auto result = offload(path);
    EXPECT_EQ(description(result), "Gagal menyalin: ");
    EXPECT_EQ(treeOf(path), tree);
    EXPECT_FALSE(PathTools::exists(onVolume()));
    expectNothingDone();
}

TEST_F(OffloadServiceMountTests, aVolumeThatFillsUpFailsTheCopy) {
    const auto path = source();
    mac.home.file(symbols + std::string("/large"), {.text = std::string(200'000, 'x')});
    const auto tree = treeOf(path);
    plugged.reset();
    plugged.emplace(ssd, 4'096'000);
    setDitto("middle() { fill; }");
    const auto result = offload(path);
    EXPECT_EQ(kindOf(result), Kind::copyFailed);
    EXPECT_EQ(treeOf(path), tree);
    EXPECT_FALSE(PathTools::exists(onVolume()));
    expectNothingDone();
}

TEST_F(OffloadServiceMountTests, aToolThatIsNotThereHasFailed) {
    const auto path = source();
    const auto tree = treeOf(path);
    ASSERT_EQ(::chmod("/usr/bin/ditto", 0), 0);
    const auto result = offload(path);
    ::chmod("/usr/bin/ditto", 0755);
    EXPECT_EQ(kindOf(result), Kind::copyFailed);
    EXPECT_EQ(treeOf(path), tree);
    expectNothingDone();
}

TEST_F(OffloadServiceMountTests, aCopyWithAShortFileIsKeptAndSoIsTheSource) {
    const auto path = source();
    const auto tree = treeOf(path);
    setDitto("after() { shorten; }");
    const auto result = offload(path, true);
    EXPECT_EQ(kindOf(result), Kind::verifyFailed);
    EXPECT_EQ(description(result), "Verifikasi salinan gagal (data asal TIDAK dihapus): asal 4 file/" +
                                       bytesText(15) + ", salinan 4 file/" + bytesText(14) +
                                       ". Salinan disimpan di " + onVolume() + ".");
    EXPECT_EQ(treeOf(path), tree);
    EXPECT_EQ(treeOf(onVolume()).size(), tree.size());
    expectNothingDone();
}

TEST_F(OffloadServiceMountTests, aCopyWithAMissingFileIsKeptAndSoIsTheSource) {
    const auto path = source();
    const auto tree = treeOf(path);
    mac.home.file(symbols + std::string("/17.4/a"));
    setDitto("after() { leaveOut; }");
    const auto result = offload(path);
    EXPECT_EQ(description(result), "Verifikasi salinan gagal (data asal TIDAK dihapus): asal 5 file/" +
                                       bytesText(15) + ", salinan 4 file/" + bytesText(15) +
                                       ". Salinan disimpan di " + onVolume() + ".");
    EXPECT_TRUE(holds(treeOf(path), tree));
    EXPECT_EQ(treeOf(onVolume()), tree);
    expectNothingDone();
}

TEST_F(OffloadServiceMountTests, appleDoubleFilesCountOnTheMacsFormats) {
    setDitto("after() { echo x >\"$destination/._17.4\"; }");
    const auto result = offload(source());
    EXPECT_EQ(kindOf(result), Kind::verifyFailed);
    EXPECT_THAT(description(result),
                HasSubstr("asal 4 file/" + bytesText(15) + ", salinan 5 file/" + bytesText(17)));
}

TEST_F(OffloadServiceMountTests, appleDoubleFilesOfTheCopyDontCountElsewhere) {
    setDitto("after() { echo x >\"$destination/._17.4\"; }");
    const auto result = offload(item(source(), ItemCategory::personal), volume("exfat"));
    EXPECT_TRUE(result) << description(result);
}

TEST_F(OffloadServiceMountTests, appleDoubleFilesOfTheSourceCountEverywhere) {
    const auto path = source();
    mac.home.file(symbols + std::string("/._17.4"), {.text = "x"});
    const auto result = offload(item(path, ItemCategory::personal), volume("exfat"));
    EXPECT_EQ(kindOf(result), Kind::verifyFailed);
    EXPECT_THAT(description(result),
                HasSubstr("asal 5 file/" + bytesText(16) + ", salinan 4 file/" + bytesText(15)));
    EXPECT_EQ(textOf(path + "/._17.4"), "x");
}

TEST_F(OffloadServiceMountTests, whatCantBeRemovedStaysBesideTheCopyWithoutARecord) {
    const auto path = source();
    const auto tree = treeOf(path);
    setDitto("after() { chattr +i \"$source/17.4/info\"; }");
    const auto result = offload(path, true);
    EXPECT_EQ(testing::runProgram({"chattr", "-i", path + "/17.4/info"}).status, 0);
    EXPECT_EQ(systemErrorOf(result), EPERM) << description(result);
    EXPECT_EQ(textOf(path + "/17.4/info"), "1234");
    EXPECT_TRUE(holds(tree, treeOf(path)));
    EXPECT_EQ(treeOf(onVolume()), tree);
    expectNothingDone();
}

TEST_F(OffloadServiceMountTests, aVolumeThatAppearsInTheSourceMeanwhileStaysWhole) {
    const auto path = source();
    const auto tree = treeOf(path);
    setDitto("after() { mount -t tmpfs box \"$source/empty\" && echo text >\"$source/empty/file\"; }");
    const auto result = offload(path, true);
    EXPECT_FALSE(result);
    EXPECT_EQ(textOf(path + "/empty/file"), "text\n");
    EXPECT_EQ(treeOf(onVolume()), tree);
    expectNothingDone();
    ::umount2((path + "/empty").c_str(), MNT_DETACH);
}

/// What somebody does to the source when it has been copied, so that neither the number of files nor of bytes
/// tells.
class ChangedSourceMountTests : public OffloadServiceMountTests,
                                public ::testing::WithParamInterface<const char*> {};

TEST_P(ChangedSourceMountTests, aSourceThatIsNoLongerWhatWasCopiedStays) {
    const auto path = source();
    setDitto("after() { cd \"$source\" && { " + std::string(GetParam()) + "; }; }");
    const auto result = offload(path, true);
    EXPECT_FALSE(result);
    ASSERT_TRUE(PathTools::isDirectory(path));
    const auto size = SizeCalculator::measure(path);
    EXPECT_EQ(size.files, 4);
    EXPECT_EQ(size.logicalBytes, 15);
    EXPECT_THAT(service.records(), IsEmpty());
    EXPECT_THAT(logged(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    By, ChangedSourceMountTests,
    ::testing::Values("printf 0000 >17.4/info", "printf 0000 >new && mv new 17.4/info",
                      "mv 17.4/info 17.4/other", "mv 17.4/info 18.0/other", "ln -sfn 17.4 latest",
                      "cd .. && cp -a 'iOS DeviceSupport' new && mv 'iOS DeviceSupport' old && "
                      "mv new 'iOS DeviceSupport'",
                      "cd .. && cp -a 'iOS DeviceSupport' new && printf 0000 >new/17.4/info && "
                      "mv 'iOS DeviceSupport' old && mv new 'iOS DeviceSupport'"));

TEST_F(OffloadServiceMountTests, anotherFileOfTheSameLengthAndTimeIsNotTheOneThatWasCopied) {
    const auto film = mac.home.file("Movies/film.mov", {.text = "film"});
    setDitto(
        "after() { printf 0000 >/Users/tester/Movies/new && touch -r \"$source\" /Users/tester/Movies/new && "
        "mv /Users/tester/Movies/new \"$source\"; }");
    EXPECT_FALSE(offload(item(film, ItemCategory::personal), volume("exfat"), true));
    EXPECT_EQ(textOf(film), "0000");
    EXPECT_EQ(textOf(onVolume("Movies/film.mov")), "film");
    expectNothingDone();
}

TEST_F(OffloadServiceMountTests, aFileThatComesWhileTheSourceIsRemovedStays) {
    const auto path = source();
    const testing::BeforeCall late(testing::Call::unlinkAt, "symbols",
                                   [&] { std::ofstream(path + "/17.4/new") << "new"; });
    const auto result = offload(path, true);
    EXPECT_NE(systemErrorOf(result), 0);
    EXPECT_EQ(textOf(path + "/17.4/new"), "new");
    EXPECT_EQ(textOf(onVolume() + "/17.4/symbols"), "567890");
    expectNothingDone();
}

// A volume that goes away, or is another by then

class ChangedVolumeMountTests : public OffloadServiceMountTests,
                                public ::testing::WithParamInterface<const char*> {
protected:
    static constexpr const char* swap = "umount -l /Volumes/SSD && mount -t tmpfs other /Volumes/SSD";
    std::string at(const std::string& snippet) const { return GetParam() + ("() { " + snippet + "; }"); }
};

TEST_P(ChangedVolumeMountTests, theSourceStaysWhenTheVolumeGoesAwayWhateverWasWrittenInItsPlace) {
    const auto path = source();
    const auto tree = treeOf(path);
    setDitto(at("umount -l /Volumes/SSD"));
    const auto result = offload(path, true);
    EXPECT_FALSE(result);
    if (GetParam() != std::string("middle")) { // then the tool fails
        EXPECT_EQ(kindOf(result), Kind::volumeMissing);
    }
    EXPECT_EQ(treeOf(path), tree);
    EXPECT_THAT(service.records(), IsEmpty());
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_P(ChangedVolumeMountTests, theSourceStaysWhenAnotherVolumeTookThePlace) {
    const auto path = source();
    const auto tree = treeOf(path);
    setDitto(at(swap));
    EXPECT_FALSE(offload(path, true));
    EXPECT_EQ(treeOf(path), tree);
    EXPECT_THAT(service.records(), IsEmpty());
}

TEST_P(ChangedVolumeMountTests, anotherVolumeWithTheSameCopyIsStillAnother) {
    const auto path = source();
    const auto tree = treeOf(path);
    setDitto(
        at(swap + std::string(" && mkdir -p \"${destination%/*}\" && cp -a \"$source\" \"$destination\"")));
    EXPECT_FALSE(offload(path, true));
    EXPECT_EQ(treeOf(path), tree);
    EXPECT_THAT(service.records(), IsEmpty());
}

TEST_P(ChangedVolumeMountTests, onRestoreNothingGoesFromAnotherVolume) {
    const auto record = moved();
    const auto tree = treeOf(record.destinationPath);
    // The same at the same place, on another volume.
    setDitto(
        at("cp -a /Volumes/SSD /box/same && umount -l /Volumes/SSD && mount -t tmpfs other /Volumes/SSD && "
           "cp -a /box/same/. /Volumes/SSD"));
    EXPECT_FALSE(service.restore(record));
    EXPECT_EQ(treeOf(record.destinationPath), tree);
    EXPECT_THAT(service.records(), SizeIs(1));
    std::filesystem::remove_all("/box/same");
}

INSTANTIATE_TEST_SUITE_P(When, ChangedVolumeMountTests, ::testing::Values("before", "middle", "after"));

// The two lists

/// A record as it stands in a list, by itself.
std::string jsonOf(const OffloadRecord& record, const std::string& destination, const std::string& original) {
    return "  {\n    \"bytes\" : " + std::to_string(record.bytes) + ",\n    \"date\" : \"" +
           iso8601Text(record.date) + "\",\n    \"destinationPath\" : \"" + destination +
           "\",\n    \"id\" : \"" + record.id.text() + "\",\n    \"originalPath\" : \"" + original +
           "\",\n    \"symlinked\" : " + (record.symlinked ? "true" : "false") +
           ",\n    \"title\" : \"Simbol perangkat\",\n    \"volumeName\" : "
           "\"Kerja\"" +
           (record.volumeUUID ? ",\n    \"volumeUUID\" : \"" + *record.volumeUUID + "\"" : "") + "\n  }";
}

constexpr const char* destinationInJson =
    "\\/Volumes\\/SSD\\/Korvanti Offload\\/Library\\/Developer\\/Xcode\\/iOS DeviceSupport";
constexpr const char* originalInJson = "\\/Users\\/tester\\/Library\\/Developer\\/Xcode\\/iOS DeviceSupport";

TEST_F(OffloadServiceMountTests, theStoreAndTheManifestHaveOneForm) {
    const auto record = moved();
    const auto expected = "[\n" + jsonOf(record, destinationInJson, originalInJson) + "\n]";
    EXPECT_EQ(textOf(store), expected);
    EXPECT_EQ(textOf(onVolume("manifest.json")), expected);
    // Nothing is left of how they were written.
    EXPECT_EQ(PathTools::children(std::string(PathTools::parent(store))).size(), 2U);
    EXPECT_EQ(PathTools::children(onVolume("")).size(), 2U);
}

TEST_F(OffloadServiceMountTests, aVolumeWithoutUUIDHasNoSuchKey) {
    auto where = volume();
    where.uuid.reset();
    const auto record = offload(item(source()), where);
    ASSERT_TRUE(record) << description(record);
    EXPECT_EQ(record->volumeUUID, std::nullopt);
    EXPECT_EQ(textOf(store), "[\n" + jsonOf(*record, destinationInJson, originalInJson) + "\n]");
    EXPECT_THAT(textOf(store), Not(HasSubstr("volumeUUID")));
}

TEST_F(OffloadServiceMountTests, aNewRecordComesLast) {
    const auto one = moved();
    const auto two = offload(source("Library/Caches/x"));
    ASSERT_TRUE(two);
    const auto records = service.records();
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].id, one.id);
    EXPECT_EQ(records[1].id, two->id);
}

TEST_F(OffloadServiceMountTests, theManifestHoldsTheRecordsOfItsVolumeAlone) {
    const Mount second(volumes.folder("Second"));
    auto other = volume();
    other.mountPath = volumes.path("Second");
    other.uuid = "11111111-2222-4333-8444-555555555556";
    const auto first = moved();
    const auto elsewhere = offload(item(source("Library/Caches/x")), other);
    ASSERT_TRUE(elsewhere) << description(elsewhere);
    const auto here = OffloadRecords::read(onVolume("manifest.json"));
    const auto there = OffloadRecords::read(volumes.path("Second/Korvanti Offload/manifest.json"));
    ASSERT_THAT(here, SizeIs(1));
    ASSERT_THAT(there, SizeIs(1));
    EXPECT_EQ(here[0].id, first.id);
    EXPECT_EQ(there[0].id, elsewhere->id);
    EXPECT_THAT(service.records(), SizeIs(2));
}

TEST_F(OffloadServiceMountTests, volumesWithoutUUIDCountForEachOthersManifest) {
    const Mount second(volumes.folder("Second"));
    auto one = volume();
    one.uuid.reset();
    auto two = one;
    two.mountPath = volumes.path("Second");
    moved(); // of a volume with one
    ASSERT_TRUE(offload(item(source("Library/Caches/x")), one));
    ASSERT_TRUE(offload(item(source("Library/Caches/y")), two));
    EXPECT_THAT(OffloadRecords::read(onVolume("manifest.json")), SizeIs(1)); // as of then
    EXPECT_THAT(OffloadRecords::read(volumes.path("Second/Korvanti Offload/manifest.json")), SizeIs(2));
}

TEST_F(OffloadServiceMountTests, aDamagedStoreCountsAsEmptyAndIsReplaced) {
    const auto good = textOf((moved(false), store));
    for (const auto& text :
         std::vector<std::string>{"", "{", "{}", "null", "[1]", "[{}]", good.substr(0, good.size() - 1),
                                  good + "x", "[" + good + "]", std::string(1000, '['), "\xff\xfe",
                                  std::string(good).replace(good.find("false"), 5, "\"no\""),
                                  std::string(good).replace(good.find("\"id\""), 4, "\"ID\""),
                                  std::string(good).replace(good.find("T"), 1, "t")}) {
        if (text.find("Simbol") != std::string::npos && text == good)
            continue;
        std::ofstream(store) << text;
        EXPECT_THAT(service.records(), IsEmpty()) << text;
        const auto path = source();
        const auto record = offload(path);
        ASSERT_TRUE(record) << description(record);
        const auto records = service.records();
        ASSERT_THAT(records, SizeIs(1)) << text;
        EXPECT_EQ(records[0].id, record->id);
    }
}

TEST_F(OffloadServiceMountTests, aDamagedManifestIsReplaced) {
    volumes.file("SSD/Korvanti Offload/manifest.json", {.text = "{damaged"});
    const auto record = moved();
    EXPECT_EQ(textOf(onVolume("manifest.json")), textOf(store));
}

TEST_F(OffloadServiceMountTests, listsThatCantBeWrittenFailNoMove) {
    std::filesystem::remove_all(PathTools::parent(store));
    volumes.folder("SSD/Korvanti Offload/manifest.json");
    const auto path = source();
    const auto tree = treeOf(path);
    const auto record = offload(path);
    ASSERT_TRUE(record) << description(record);
    EXPECT_EQ(treeOf(onVolume()), tree);
    EXPECT_TRUE(service.restore(*record));
    EXPECT_EQ(treeOf(path), tree);
}

TEST_F(OffloadServiceMountTests, aManifestThatIsALinkTakesNothingFromWhereItLeads) {
    const auto letter = mac.home.file("Documents/letter", {.text = "letter"});
    volumes.symlink("SSD/Korvanti Offload/manifest.json", letter);
    moved();
    EXPECT_EQ(textOf(letter), "letter");
}

TEST_F(OffloadServiceMountTests, theActivityLogTellsOfTheMove) {
    const auto record = moved();
    const auto entries = logged();
    ASSERT_THAT(entries, SizeIs(1));
    EXPECT_EQ(entries[0].kind, "Pindah ke SSD");
    EXPECT_EQ(entries[0].title, "Simbol perangkat");
    EXPECT_EQ(entries[0].path, record.originalPath);
    EXPECT_EQ(entries[0].bytes, record.bytes);
    EXPECT_TRUE(entries[0].success);
    EXPECT_EQ(entries[0].message, "\u2192 " + record.destinationPath);
}

// Progress

struct Reported {
    std::int64_t bytes = 0;
    double seconds = 0; ///< since the start
};

class OffloadProgressMountTests : public OffloadServiceMountTests {
protected:
    std::vector<Reported> reportsOf(const std::string& path) {
        std::vector<Reported> reports;
        std::mutex mutex;
        const auto start = std::chrono::steady_clock::now();
        const auto result = service.offload(item(path), volume(), {}, [&](std::int64_t bytes) {
            const std::lock_guard lock(mutex);
            reports.push_back(
                {bytes, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count()});
        });
        succeeded = result.has_value();
        return reports;
    }

    bool succeeded = false;
};

TEST_F(OffloadProgressMountTests, aQuickCopyIsReportedOnceAtItsEnd) {
    const auto reports = reportsOf(source());
    EXPECT_TRUE(succeeded);
    ASSERT_THAT(reports, SizeIs(1));
    EXPECT_EQ(reports[0].bytes, 15);
    EXPECT_LT(reports[0].seconds, 2);
}

TEST_F(OffloadProgressMountTests, aSlowCopyIsReportedEveryThreeSeconds) {
    setDitto("middle() { sleep 7; }");
    const auto reports = reportsOf(source());
    EXPECT_TRUE(succeeded);
    ASSERT_THAT(reports, SizeIs(3));
    EXPECT_NEAR(reports[0].seconds, 3, 0.9);
    EXPECT_NEAR(reports[1].seconds, 6, 0.9);
    EXPECT_NEAR(reports[2].seconds, 7, 0.9);
    EXPECT_EQ(reports[0].bytes, reports[1].bytes);
    EXPECT_LT(reports[1].bytes, 15);
    EXPECT_EQ(reports[2].bytes, 15);
}

TEST_F(OffloadProgressMountTests, aCopyThatFailsHasALastReportToo) {
    setDitto("middle() { fail 1 no; }");
    EXPECT_THAT(reportsOf(source()), SizeIs(1));
    EXPECT_FALSE(succeeded);
}

TEST_F(OffloadProgressMountTests, whatIsRefusedReportsNothing) {
    EXPECT_THAT(reportsOf(mac.home.path("Projects/nothing")), IsEmpty());
}

// Restore

TEST_F(OffloadServiceMountTests, aRestoreBringsTheTreeBackAndTakesTheLink) {
    for (const bool link : {true, false}) {
        const auto tree = treeOf(source());
        const auto record = moved(link);
        const auto& path = record.originalPath;
        const auto result = service.restore(record);
        ASSERT_TRUE(result) << description(result);
        EXPECT_EQ(treeOf(path), tree);
        EXPECT_FALSE(PathTools::exists(record.destinationPath));
        EXPECT_EQ(textOf(store), "[\n\n]");
        EXPECT_EQ(textOf(onVolume("manifest.json")), "[\n\n]");
        EXPECT_EQ(mac.calls().back(), "ditto " + record.destinationPath + " " + path);
    }
}

TEST_F(OffloadServiceMountTests, aRestoreHasNoOptionsForAnyFormat) {
    const auto record = offload(item(source("Pictures/2024"), ItemCategory::personal), volume("exfat"));
    ASSERT_TRUE(record) << description(record);
    ASSERT_TRUE(service.restore(*record));
    EXPECT_EQ(mac.calls().back(), "ditto " + record->destinationPath + " " + record->originalPath);
}

TEST_F(OffloadServiceMountTests, theActivityLogTellsOfTheRestore) {
    const auto record = moved();
    ASSERT_TRUE(service.restore(record));
    const auto entries = logged();
    ASSERT_THAT(entries, SizeIs(2));
    EXPECT_EQ(entries[0].kind, "Kembalikan dari SSD");
    EXPECT_EQ(entries[0].title, "Simbol perangkat");
    EXPECT_EQ(entries[0].path, record.originalPath);
    EXPECT_EQ(entries[0].bytes, record.bytes);
    EXPECT_TRUE(entries[0].success);
    EXPECT_EQ(entries[0].message, "\u2190 " + record.destinationPath);
}

TEST_F(OffloadServiceMountTests, aLinkToElsewhereGoesAndWhereItLedStays) {
    for (const auto& target : {mac.home.folder("Documents/elsewhere"), std::string("nowhere")}) {
        const auto record = moved(false);
        const auto keep = mac.home.file("Documents/elsewhere/keep", {.text = "keep"});
        mac.home.symlink(symbols, target);
        const auto result = service.restore(record);
        ASSERT_TRUE(result) << description(result);
        EXPECT_TRUE(PathTools::isDirectory(record.originalPath));
        EXPECT_EQ(textOf(record.originalPath + "/18.0/info"), "1");
        EXPECT_EQ(textOf(keep), "keep");
        EXPECT_EQ(PathTools::children(mac.home.path("Documents/elsewhere")).size(), 1U);
        std::filesystem::remove_all(record.originalPath);
    }
}

TEST_F(OffloadServiceMountTests, whatStandsAtTheOldPlaceIsNotOverwritten) {
    const auto record = moved(false);
    const auto copy = treeOf(record.destinationPath);
    for (const bool isFolder : {false, true}) {
        std::filesystem::remove_all(record.originalPath);
        if (isFolder)
            mac.home.file(symbols + std::string("/new"), {.text = "new"});
        else
            mac.home.file(symbols, {.text = "new"});
        const auto tree = treeOf(record.originalPath);
        const auto result = service.restore(record);
        EXPECT_EQ(kindOf(result), Kind::originalOccupied);
        EXPECT_EQ(description(result),
                  "Lokasi asal sudah berisi data baru: ~/Library/Developer/Xcode/iOS DeviceSupport");
        EXPECT_EQ(treeOf(record.originalPath), tree);
        EXPECT_EQ(treeOf(record.destinationPath), copy);
        EXPECT_THAT(service.records(), SizeIs(1));
    }
}

TEST_F(OffloadServiceMountTests, missingParentsOfTheOldPlaceAreMade) {
    const auto record = moved(true);
    std::filesystem::remove_all(mac.home.path("Library/Developer"));
    const auto result = service.restore(record);
    ASSERT_TRUE(result) << description(result);
    EXPECT_EQ(textOf(record.originalPath + "/18.0/info"), "1");
}

TEST_F(OffloadServiceMountTests, parentsThatCantBeMadeLeaveTheCopyAndTheRecord) {
    const auto record = moved(false);
    const auto copy = treeOf(record.destinationPath);
    std::filesystem::remove_all(mac.home.path("Library/Developer"));
    mac.home.file("Library/Developer", {.text = "file"});
    const auto result = service.restore(record);
    ASSERT_NE(systemErrorOf(result), 0);
    EXPECT_EQ(std::get<FileError>(result.error()).path,
              mac.home.path("Library/Developer/Xcode")); // with one slash between all
    EXPECT_EQ(treeOf(record.destinationPath), copy);
    EXPECT_EQ(textOf(mac.home.path("Library/Developer")), "file");
    EXPECT_THAT(service.records(), SizeIs(1));
}

TEST_F(OffloadServiceMountTests, aRestoreWhoseCopyFailsLosesOnlyTheLink) {
    const auto record = moved(true);
    const auto copy = treeOf(record.destinationPath);
    setDitto("middle() { fail 5 $' ditto: no \\n'; }");
    const auto result = service.restore(record);
    EXPECT_EQ(kindOf(result), Kind::copyFailed);
    EXPECT_EQ(description(result), "Gagal menyalin:  ditto: no \n");
    EXPECT_FALSE(PathTools::isSymlink(record.originalPath));
    EXPECT_TRUE(PathTools::exists(record.originalPath)); // half of it
    EXPECT_EQ(treeOf(record.destinationPath), copy);
    EXPECT_THAT(service.records(), SizeIs(1));
    EXPECT_THAT(logged(), SizeIs(1));
    EXPECT_EQ(textOf(onVolume("manifest.json")), textOf(store));
}

TEST_F(OffloadServiceMountTests, aRestoreThatDoesNotVerifyRemovesNothing) {
    for (const auto* script :
         {"after() { shorten; }", "after() { leaveOut; }", "after() { touch \"$destination/._x\"; }"}) {
        const auto record = moved(true);
        const auto copy = treeOf(record.destinationPath);
        setDitto(script);
        const auto result = service.restore(record);
        setDitto("");
        EXPECT_EQ(kindOf(result), Kind::verifyFailed);
        EXPECT_EQ(description(result),
                  "Verifikasi salinan gagal (data asal TIDAK dihapus): salinan di Mac tidak "
                  "sama dengan di SSD; data di SSD tidak dihapus.");
        EXPECT_TRUE(PathTools::isDirectory(record.originalPath));
        EXPECT_EQ(treeOf(record.destinationPath), copy);
        EXPECT_THAT(service.records(), Contains(::testing::Field(&OffloadRecord::id, record.id)));
        std::filesystem::remove_all(record.originalPath);
    }
}

TEST_F(OffloadServiceMountTests, appleDoubleFilesOnTheVolumeDontCount) {
    const auto record = moved(true);
    volumes.file("SSD/Korvanti Offload/" + std::string(symbols) + "/._17.4", {.text = "attributes"});
    setDitto("after() { rm \"$destination/._17.4\"; }");
    const auto result = service.restore(record);
    EXPECT_TRUE(result) << description(result);
    EXPECT_FALSE(PathTools::exists(record.destinationPath));
}

TEST_F(OffloadServiceMountTests, aCopyThatChangedWhileItWasBroughtBackStays) {
    const auto record = moved(true);
    setDitto("after() { printf 0000 >\"$source/17.4/info\"; }");
    EXPECT_FALSE(service.restore(record));
    EXPECT_EQ(textOf(record.destinationPath + "/17.4/info"), "0000");
    EXPECT_THAT(service.records(), SizeIs(1));
}

TEST_F(OffloadServiceMountTests, aFolderThatTakesThePlaceOfTheLinkAtTheLastMomentStays) {
    // The copy has another name, so that it is not what is waited for.
    std::filesystem::create_directories(std::string("/Volumes/SSD/Korvanti Offload/") + symbols);
    const auto record = moved(true);
    const auto copy = treeOf(record.destinationPath);
    const testing::BeforeCall swap(testing::Call::statAt,
                                   std::filesystem::path(record.originalPath).filename(), [&] {
                                       std::filesystem::remove(record.originalPath);
                                       mac.home.file(symbols + std::string("/new"), {.text = "new"});
                                   });
    EXPECT_EQ(kindOf(service.restore(record)), Kind::originalOccupied);
    EXPECT_EQ(textOf(record.originalPath + "/new"), "new");
    EXPECT_EQ(treeOf(record.destinationPath), copy);
}

TEST_F(OffloadServiceMountTests, anOldPlaceThatLeadsToTheCopyItselfIsNoSecondCopy) {
    for (const auto* script :
         {"ln -s \"/Volumes/SSD/Korvanti Offload/Library/Developer\" ~/Library/Developer",
          "mkdir ~/Library/Developer && "
          "mount --bind \"/Volumes/SSD/Korvanti Offload/Library/Developer\" ~/Library/Developer"}) {
        const auto record = moved(false);
        const auto copy = treeOf(record.destinationPath);
        setDitto("before() { mv ~/Library/Developer ~/Library/away && " + std::string(script) +
                 " && exit 0; }");
        const auto result = service.restore(record);
        EXPECT_FALSE(result);
        EXPECT_NE(kindOf(result), Kind::copyFailed) << description(result);
        EXPECT_EQ(treeOf(record.destinationPath), copy);
        EXPECT_THAT(service.records(), Contains(::testing::Field(&OffloadRecord::id, record.id)));
        setDitto("");
        ::umount2(mac.home.path("Library/Developer").c_str(), MNT_DETACH | UMOUNT_NOFOLLOW);
        std::filesystem::remove(mac.home.path("Library/Developer"));
        std::filesystem::remove_all(mac.home.path("Library/away"));
    }
}

TEST_F(OffloadServiceMountTests, aCopyThatLeadsToTheSourceItselfIsNoSecondCopy) {
    const auto path = source();
    const auto tree = treeOf(path);
    const std::string developer = "/Volumes/SSD/Korvanti Offload/Library/Developer";
    for (const auto& script :
         {"rm -r \"" + developer + "\" && ln -s ~/Library/Developer \"" + developer + "\"",
          "mount --bind ~/Library/Developer \"" + developer + "\""}) {
        setDitto("before() { " + script + " && exit 0; fail 1 'not done'; }");
        const auto result = offload(path);
        EXPECT_FALSE(result);
        EXPECT_NE(kindOf(result), Kind::copyFailed) << description(result);
        EXPECT_EQ(treeOf(path), tree);
        EXPECT_THAT(service.records(), IsEmpty());
        ::umount2(developer.c_str(), MNT_DETACH | UMOUNT_NOFOLLOW);
        std::filesystem::remove_all(developer);
    }
}

TEST_F(OffloadServiceMountTests, aCopyThatCantBeRemovedKeepsItsRecord) {
    const auto record = moved(true);
    const auto tree = treeOf(record.destinationPath);
    setDitto("after() { mount -o remount,ro /Volumes/SSD; }");
    const auto result = service.restore(record);
    EXPECT_EQ(systemErrorOf(result), EROFS) << description(result);
    EXPECT_EQ(treeOf(record.originalPath), tree);
    EXPECT_EQ(treeOf(record.destinationPath), tree);
    EXPECT_THAT(service.records(), SizeIs(1));
    EXPECT_THAT(logged(), SizeIs(1));
}

TEST_F(OffloadServiceMountTests, aVolumeThatIsUnpluggedOrEmptyIsMissingOnRestore) {
    const auto record = moved(true);
    std::filesystem::rename(record.destinationPath, ssd + "/away");
    EXPECT_EQ(OffloadService::status(record), OffloadStatus::destinationMissing);
    EXPECT_EQ(description(service.restore(record)), "SSD tidak terpasang.");
    EXPECT_TRUE(PathTools::isSymlink(record.originalPath));

    unplug();
    std::filesystem::remove(ssd);
    EXPECT_EQ(OffloadService::status(record), OffloadStatus::volumeMissing);
    EXPECT_EQ(kindOf(service.restore(record)), Kind::volumeMissing);
    EXPECT_TRUE(PathTools::isSymlink(record.originalPath));
    EXPECT_THAT(service.records(), SizeIs(1));
    volumes.folder("SSD");
}

TEST_F(OffloadServiceMountTests, whatStandsInAPlainFolderInPlaceOfTheVolumeIsNotBroughtBack) {
    const auto record = moved(true);
    const auto copy = treeOf(record.destinationPath);
    ASSERT_EQ(testing::runProgram({"cp", "-a", ssd, volumes.path("Palsu")}).status, 0);
    unplug();
    std::filesystem::remove(ssd);
    std::filesystem::rename(volumes.path("Palsu"), ssd);
    ASSERT_EQ(treeOf(record.destinationPath), copy);
    EXPECT_EQ(OffloadService::status(record), OffloadStatus::available);
    EXPECT_EQ(kindOf(service.restore(record)), Kind::volumeMissing);
    EXPECT_EQ(treeOf(record.destinationPath), copy);
    EXPECT_TRUE(PathTools::isSymlink(record.originalPath));
    EXPECT_THAT(service.records(), SizeIs(1));
    EXPECT_THAT(logged(), SizeIs(1));
}

TEST_F(OffloadServiceMountTests, whatStandsOnAnotherVolumeIsNotBroughtBack) {
    const auto record = moved(true);
    const auto copy = treeOf(record.destinationPath);
    const BoxFolder database{"/run/udev/data"};
    struct stat status {};
    ASSERT_EQ(::stat(ssd.c_str(), &status), 0);
    const auto facts =
        "b" + std::to_string(major(status.st_dev)) + ":" + std::to_string(minor(status.st_dev));
    database.file(facts, {.text = "E:ID_FS_UUID=another\n"});
    EXPECT_EQ(kindOf(service.restore(record)), Kind::volumeMissing);
    EXPECT_EQ(treeOf(record.destinationPath), copy);
    EXPECT_TRUE(PathTools::isSymlink(record.originalPath));

    database.file(facts, {.text = "E:ID_FS_UUID=" + std::string(uuid) + "\n"});
    const auto back = service.restore(record);
    EXPECT_TRUE(back) << description(back);
}

TEST_F(OffloadServiceMountTests, aRestoreLeavesTheRecordsOfOthers) {
    const auto record = moved(true);
    const auto other = offload(source("Library/Caches/x"));
    ASSERT_TRUE(other);
    auto elsewhere = *other;
    elsewhere.id = Uuid::random();
    elsewhere.volumeUUID = "other";
    elsewhere.date = instantFromSeconds(wholeSeconds(elsewhere.date));
    OffloadRecords::write(store, {record, elsewhere, *other, record});
    ASSERT_TRUE(service.restore(record));
    const auto left = service.records();
    ASSERT_THAT(left, SizeIs(2));
    EXPECT_EQ(left[0], elsewhere);
    EXPECT_EQ(left[1].id, other->id);
    const auto manifest = OffloadRecords::read(onVolume("manifest.json"));
    ASSERT_THAT(manifest, SizeIs(1));
    EXPECT_EQ(manifest[0].id, other->id);
}

TEST_F(OffloadServiceMountTests, aNameThatIsNoTextIsRefusedOrComesBack) {
    const auto path = source("Library/Caches/caf\xe9");
    const auto tree = treeOf(path);
    const auto result = offload(path);
    if (!result) {
        EXPECT_EQ(treeOf(path), tree);
        return;
    }
    const auto records = service.records();
    ASSERT_THAT(records, SizeIs(1));
    const auto back = service.restore(records[0]);
    EXPECT_TRUE(back) << description(back);
    EXPECT_EQ(treeOf(path), tree);
}

// Records that lead astray

struct Astray {
    const char* what;
    const char* destination;
    const char* original;
    bool mayMove = false; ///< whole, to where the record says, and nothing else goes
};

void PrintTo(const Astray& astray, std::ostream* stream) {
    *stream << astray.what;
}

class AstrayRecordMountTests : public OffloadServiceMountTests,
                               public ::testing::WithParamInterface<Astray> {};

TEST_P(AstrayRecordMountTests, nothingIsRemovedForIt) {
    moved(true);
    volumes.file("SSD/photos/holiday.jpg", {.text = "holiday"});
    volumes.file("SSD/Korvanti Offload/other/file", {.text = "other"});
    volumes.symlink("SSD/Korvanti Offload/link", ssd + "/photos");
    volumes.symlink("SSD/Korvanti Offload/outward", mac.home.path("Documents"));
    volumes.file("plain/Korvanti Offload/folder/file", {.text = "no volume"});
    mac.home.file("Documents/letters/letter.txt", {.text = "letter"});
    mac.home.file(".ssh/id", {.text = "secret"});
    mac.home.symlink(".ssh/config", "id");
    mac.home.symlink("Library/link", mac.home.path("Documents"));
    mac.home.symlink("Documents/letters/shortcut", "letter.txt");
    mac.home.file("Korvanti Offload/folder/file", {.text = "in the home"});
    const auto home = treeOf(mac.home.path());
    auto all = treeOf(volumes.path());
    const std::string destination = GetParam().destination;
    const auto tree = GetParam().mayMove ? treeOf(destination) : Tree();

    OffloadRecord record{.title = "Sesat",
                         .originalPath = GetParam().original,
                         .destinationPath = destination,
                         .volumeUUID = uuid,
                         .volumeName = "Kerja"};
    const auto result = service.restore(record);
    EXPECT_TRUE(!result || GetParam().mayMove);
    EXPECT_TRUE(GetParam().mayMove || mac.calls().size() == 1) << mac.calls().back();
    if (result) {
        EXPECT_EQ(treeOf(record.originalPath), tree);
        const auto moved = destination.substr(volumes.path().size());
        std::erase_if(all,
                      [&](const auto& entry) { return PathTools::isSameOrAncestor(moved, entry.first); });
        std::filesystem::remove_all(record.originalPath);
    }
    auto homeAfter = treeOf(mac.home.path());
    for (const auto& list : {store, log}) {
        const auto relative = list.substr(mac.home.path().size());
        EXPECT_TRUE(result || homeAfter[relative] == home.at(relative));
        homeAfter[relative] = home.at(relative);
    }
    EXPECT_TRUE(holds(homeAfter, home));
    EXPECT_TRUE(holds(treeOf(volumes.path()), all));
    EXPECT_THAT(service.records(), SizeIs(1));
}

constexpr const char* fine = "/Users/tester/Library/Caches/x/y";
constexpr const char* copied = "/Volumes/SSD/Korvanti Offload/Library/Developer/Xcode/iOS DeviceSupport";

INSTANTIATE_TEST_SUITE_P(
    By, AstrayRecordMountTests,
    ::testing::Values(
        Astray{"the user's own on the volume", "/Volumes/SSD/photos", fine},
        Astray{"the whole volume", "/Volumes/SSD", fine},
        Astray{"the whole volume, slash", "/Volumes/SSD/", fine},
        Astray{"our folder itself", "/Volumes/SSD/Korvanti Offload", fine},
        Astray{"our folder itself, slash", "/Volumes/SSD/Korvanti Offload/", fine},
        Astray{"our folder itself, dot", "/Volumes/SSD/Korvanti Offload/.", fine},
        Astray{"the manifest", "/Volumes/SSD/Korvanti Offload/manifest.json", fine, true},
        Astray{"a way up", "/Volumes/SSD/Korvanti Offload/../photos", fine},
        Astray{"a way up at the end", "/Volumes/SSD/Korvanti Offload/other/..", fine},
        Astray{"a way up to the home",
               "/Volumes/SSD/Korvanti Offload/../../../Users/tester/Documents/letters", fine},
        Astray{"a link", "/Volumes/SSD/Korvanti Offload/link/", fine},
        Astray{"through a link", "/Volumes/SSD/Korvanti Offload/link/holiday.jpg", fine},
        Astray{"through a link to the home", "/Volumes/SSD/Korvanti Offload/outward/letters", fine},
        Astray{"another name like ours", "/Volumes/SSD/Korvanti Offload2/x", fine},
        Astray{"no volume at all", "/Users/tester/Documents/letters", fine},
        Astray{"our folder in the home", "/Users/tester/Korvanti Offload/folder", fine},
        Astray{"secrets", "/Users/tester/.ssh", fine}, Astray{"the home", "/Users/tester", fine},
        Astray{"everything", "/", fine}, Astray{"nothing", "", fine},
        Astray{"a folder that is no volume", "/Volumes/plain/Korvanti Offload/folder", fine, true},
        Astray{"no absolute path", "Volumes/SSD/photos", fine}, Astray{"all volumes", "/Volumes", fine},
        Astray{"back to a secret link", copied, "/Users/tester/.ssh/config"},
        Astray{"back among secrets", copied, "/Users/tester/.ssh/new", true},
        Astray{"back through a link", copied, "/Users/tester/Library/link/new"},
        Astray{"back to a link through a link", copied, "/Users/tester/Library/link/letters/shortcut"},
        Astray{"back by a way up", copied, "/Users/tester/Library/../.ssh/config"},
        Astray{"back outside the home", copied, "/Applications/x", true},
        Astray{"back into the system", copied, "/usr/local/x", true},
        Astray{"back beside itself", copied, "/Volumes/SSD/photos/x", true},
        Astray{"back to itself", copied, copied},
        Astray{"back into itself", copied,
               "/Volumes/SSD/Korvanti Offload/Library/Developer/Xcode/iOS DeviceSupport/x"},
        Astray{"back to the home", copied, "/Users/tester"}, Astray{"back to nowhere", copied, ""},
        Astray{"back to no absolute path", copied, "relative/x"}));

// Status

TEST_F(OffloadServiceMountTests, theStatusLooksAtTheVolumesRootFirst) {
    volumes.file("SSD/x/y", {.text = "text"});
    volumes.symlink("SSD/dangling", "nowhere");
    volumes.symlink("link", ssd);
    volumes.file("file");
    mac.home.file("x");
    using enum OffloadStatus;
    for (const auto& [path, status] :
         std::vector<std::pair<std::string, OffloadStatus>>{{"/Volumes/SSD/x/y", available},
                                                            {"/Volumes/SSD/x", available},
                                                            {"/Volumes/SSD", available},
                                                            {"//Volumes///SSD//x", available},
                                                            {"/Volumes/SSD/dangling", available},
                                                            {"/Volumes/SSD/z", destinationMissing},
                                                            {"/Volumes/SSD/x/y/z", destinationMissing},
                                                            {"/Volumes/None/x", volumeMissing},
                                                            {"/Volumes/None", volumeMissing},
                                                            {"/Volumes/file/x", volumeMissing},
                                                            {"/Volumes/link/x", volumeMissing},
                                                            {"/Volumes", available},
                                                            {"/volumes/None/x", destinationMissing},
                                                            {"/Users/tester/x", available},
                                                            {"/Users/tester/y", destinationMissing},
                                                            {"/", available},
                                                            {"", destinationMissing},
                                                            {"Volumes/None/x", volumeMissing}}) {
        OffloadRecord record;
        record.destinationPath = path;
        EXPECT_EQ(OffloadService::status(record), status) << path;
    }
}

// Forget

TEST_F(OffloadServiceMountTests, forgettingTakesTheRecordAndTouchesNothingElse) {
    const auto record = moved(true);
    const auto other = offload(source("Library/Caches/x"));
    ASSERT_TRUE(other);
    const auto tree = treeOf(ssd);
    service.forget(record);
    const auto records = service.records();
    ASSERT_THAT(records, SizeIs(1));
    EXPECT_EQ(records[0].id, other->id);
    EXPECT_EQ(treeOf(ssd), tree); // the manifest with the record in it, too
    EXPECT_TRUE(PathTools::isSymlink(record.originalPath));
    EXPECT_THAT(logged(), SizeIs(2));
    service.forget(*other);
    EXPECT_EQ(textOf(store), "[\n\n]");
}

TEST_F(OffloadServiceMountTests, forgettingEmptiesADamagedStore) {
    const auto record = moved(true);
    std::ofstream(store) << "damaged";
    service.forget(record);
    EXPECT_EQ(textOf(store), "[\n\n]");
}

// A file system with blocks

TEST_F(OffloadServiceMountTests, anExt4VolumeTakesTheTreeAndGivesItBack) {
    const auto image = mac.home.file("disk.image", {.sparseBytes = 64 << 20});
    volumes.folder("Loop");
    const auto made = testing::runProgram({"mke2fs", "-q", "-t", "ext4", image});
    const auto mounted = testing::runProgram({"mount", "-o", "loop", image, volumes.path("Loop")});
    if (made.status != 0 || mounted.status != 0)
        GTEST_SKIP() << "no loop device here: " << made.err << mounted.err;
    const auto path = source();
    mac.home.hardLink(symbols + std::string("/hard"), path + "/17.4/info");
    mac.home.file(symbols + std::string("/sparse"), {.text = "x", .sparseBytes = 5'000'000});
    EXPECT_EQ(::setxattr((path + "/hard").c_str(), "user.kind", "v", 1, 0), 0);
    const auto tree = treeOf(path);

    auto where = volume();
    where.mountPath = volumes.path("Loop");
    const auto record = offload(item(path), where, true);
    EXPECT_TRUE(record) << description(record);
    if (record) {
        const auto copy = record->destinationPath;
        EXPECT_EQ(treeOf(copy), tree);
        EXPECT_TRUE(std::filesystem::equivalent(copy + "/hard", copy + "/17.4/info"));
        char value = 0;
        EXPECT_EQ(::getxattr((copy + "/hard").c_str(), "user.kind", &value, 1), 1);
        const auto back = service.restore(*record);
        EXPECT_TRUE(back) << description(back);
        EXPECT_EQ(treeOf(path), tree);
        EXPECT_FALSE(PathTools::exists(copy));
    }
    EXPECT_EQ(testing::runProgram({"umount", volumes.path("Loop")}).status, 0) << "something still holds it";
}

} // namespace
} // namespace korvanti
