#include "ModelFixture.h"
#include "base/ByteText.h"
#include "fs/PathTools.h"
#include "support/Mount.h"

#include <QSignalSpy>
#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <vector>

/// Drives that come and go: real mounts, in the box as root.
namespace korvanti {
namespace {

using namespace korvanti::testing;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Optional;
using ::testing::SizeIs;

class AppModelMountTests : public ModelFixture {
protected:
    AppModelMountTests() { std::filesystem::remove("/box/ditto"); }
    ~AppModelMountTests() override {
        startAgain();
        std::filesystem::remove("/box/ditto");
    }

    /// A drive of a Mac's format, from now on until `unplug`.
    std::string plug(const std::string& name, const std::optional<std::string>& uuid,
                     const std::string& fsType = "apfs") {
        const auto path = volumes.folder(name);
        plugged.emplace(name, std::make_unique<Mount>(path, 64 * 1024 * 1024));
        struct stat facts {};
        EXPECT_EQ(::stat(path.c_str(), &facts), 0);
        if (uuid)
            database.file(fmt::format("b{}:{}", major(facts.st_dev), minor(facts.st_dev)),
                          {.text = "E:ID_FS_LABEL_ENC=" + name + "\nE:ID_FS_UUID=" + *uuid + "\n"});
        mac.answer("diskutil info -plist " + path,
                   "<plist version=\"1.0\"><dict><key>FilesystemType</key><string>" + fsType +
                       "</string></dict></plist>");
        return path;
    }
    void unplug(const std::string& name) { plugged.erase(name); }

    [[nodiscard]] bool sees(std::size_t count) {
        return waitFor([&] { return model().volumes().size() == count; });
    }
    /// One that has become the work volume.
    std::string plugWorkVolume() {
        auto path = plug("Kerja", "aa-1");
        EXPECT_TRUE(waitFor([&] { return model().workVolume().has_value(); }));
        return path;
    }
    [[nodiscard]] bool isIdle() {
        return waitFor([&] { return !model().busyMessage().has_value(); });
    }
    OffloadRecord moved(const CleanupItem& one) {
        model().offload(one);
        EXPECT_TRUE(isIdle());
        EXPECT_TRUE(waitFor([&] { return !model().offloads().empty(); }))
            << model().errorMessage().value_or("");
        return model().offloads().empty() ? OffloadRecord() : model().offloads().front();
    }

    const BoxFolder volumes{"/Volumes"};
    const BoxFolder database{"/run/udev/data"};
    std::map<std::string, std::unique_ptr<Mount>> plugged;
};

// The work volume

TEST_F(AppModelMountTests, aSingleDriveOfTheMacsFormatBecomesTheWorkVolume) {
    plug("Kerja", "aa-1");
    EXPECT_FALSE(model().workVolume().has_value());
    ASSERT_TRUE(sees(1));
    ASSERT_TRUE(model().workVolume().has_value());
    EXPECT_EQ(model().workVolume()->mountPath, "/Volumes/Kerja");
    EXPECT_EQ(KorvantiSettings::load().workVolumeUUID, "aa-1");
    EXPECT_EQ(AppModel::volumeKey(*model().workVolume()), "aa-1");
}

TEST_F(AppModelMountTests, ofTwoDrivesNoneIsChosen) {
    plug("Satu", "aa-1");
    plug("Dua", "aa-2");
    ASSERT_TRUE(sees(2));
    EXPECT_FALSE(model().settings().workVolumeUUID.has_value());
    EXPECT_FALSE(model().workVolume().has_value());
}

TEST_F(AppModelMountTests, aDriveOfAnotherFormatIsNotChosen) {
    plug("Kerja", "aa-1", "exfat");
    ASSERT_TRUE(sees(1));
    EXPECT_FALSE(model().settings().workVolumeUUID.has_value());
}

TEST_F(AppModelMountTests, aDriveWithoutAUuidIsNotChosen) {
    plug("Kerja", std::nullopt);
    ASSERT_TRUE(sees(1));
    EXPECT_FALSE(model().settings().workVolumeUUID.has_value());
    EXPECT_EQ(AppModel::volumeKey(model().volumes().front()), "/Volumes/Kerja");
}

TEST_F(AppModelMountTests, aChoiceThatWasMadeStays) {
    auto settings = model().settings();
    settings.workVolumeUUID = "aa-9";
    model().setSettings(settings);
    plug("Kerja", "aa-1");
    desktop.mountsChanged();
    ASSERT_TRUE(sees(1));
    EXPECT_FALSE(model().workVolume().has_value());
    EXPECT_EQ(KorvantiSettings::load().workVolumeUUID, "aa-9");
}

TEST_F(AppModelMountTests, theModelFollowsRealMounts) {
    AppModel watching(systemDesktop(mac.home.path()));
    plug("Kerja", "aa-1");
    ASSERT_TRUE(waitFor([&] { return watching.volumes().size() == 1; }));
    plug("Lain", "aa-2");
    ASSERT_TRUE(waitFor([&] { return watching.volumes().size() == 2; }));
    EXPECT_EQ(watching.workVolume()->name, "Kerja");
    unplug("Kerja");
    ASSERT_TRUE(waitFor([&] { return watching.volumes().size() == 1; }));
    EXPECT_FALSE(watching.workVolume().has_value());
    EXPECT_EQ(watching.settings().workVolumeUUID, "aa-1");
}

// There and back

TEST_F(AppModelMountTests, aFolderIsMovedAndLeavesTheReportButNotTheFile) {
    auto one = folderItem("Library/Developer/Xcode/iOS DeviceSupport");
    one.title = "Simbol";
    saveReport({one, item("/other")});
    const auto before = textOf(AppPaths::lastReport());
    const auto path = plugWorkVolume();
    QSignalSpy busy(&model(), &AppModel::busyMessageChanged);
    model().offload(one);
    EXPECT_EQ(model().busyMessage(), "Memindahkan Simbol ke Kerja…");
    EXPECT_TRUE(model().hasWorkThatMustEnd());
    ASSERT_TRUE(isIdle());
    EXPECT_FALSE(model().hasWorkThatMustEnd());
    EXPECT_EQ(model().noticeMessage(), "Simbol dipindah ke Kerja (lokasi lama jadi tautan ke SSD).");
    EXPECT_FALSE(model().errorMessage().has_value());
    EXPECT_THAT(pathsOf(model().report()->items), ElementsAre("/other"));
    EXPECT_THAT(model().selection(), ElementsAre("/other"));
    EXPECT_EQ(textOf(AppPaths::lastReport()), before);
    EXPECT_TRUE(PathTools::isSymlink(one.path));
    EXPECT_TRUE(PathTools::exists(path + "/Korvanti Offload/Library/Developer/Xcode/iOS DeviceSupport/file"));
    ASSERT_THAT(model().activity(), SizeIs(1));
    EXPECT_EQ(model().activity().front().kind, "Pindah ke SSD");
    ASSERT_TRUE(waitFor([&] { return model().offloads().size() == 1; }));
    EXPECT_EQ(model().offloadStatus(model().offloads().front()), OffloadStatus::available);
    EXPECT_EQ(busy.count(), 3); // at the start, the copy's size, and none at the end
}

TEST_F(AppModelMountTests, onlySomeCategoriesLeaveALink) {
    const std::map<ItemCategory, bool> expected = {
        {ItemCategory::xcode, true},      {ItemCategory::simulators, false}, {ItemCategory::android, true},
        {ItemCategory::projects, true},   {ItemCategory::toolchains, true},  {ItemCategory::aiTools, true},
        {ItemCategory::appCaches, false}, {ItemCategory::apps, false},       {ItemCategory::personal, false},
        {ItemCategory::system, false}};
    plugWorkVolume();
    for (const auto category : allCases<ItemCategory>) {
        auto one = folderItem("Library/Caches/" + std::string(rawValue(category)));
        one.category = category;
        one.title = "X";
        model().offload(one);
        ASSERT_TRUE(isIdle());
        EXPECT_EQ(model().errorMessage(), std::nullopt);
        EXPECT_EQ(PathTools::isSymlink(one.path), expected.at(category)) << one.path;
        EXPECT_EQ(model().noticeMessage(), expected.at(category)
                                               ? "X dipindah ke Kerja (lokasi lama jadi tautan ke SSD)."
                                               : "X dipindah ke Kerja.");
    }
}

TEST_F(AppModelMountTests, theWayOfAMoveIsTold) {
    auto one = folderItem("Library/Caches/x");
    one.title = "<b>X</b>";
    one.bytes = 2'000'000;
    plugWorkVolume();
    std::vector<std::string> told;
    QObject::connect(&model(), &AppModel::busyMessageChanged,
                     [&] { told.push_back(model().busyMessage().value_or("-")); });
    model().offload(one);
    ASSERT_TRUE(isIdle());
    EXPECT_THAT(told, ElementsAre("Memindahkan <b>X</b> ke Kerja…",
                                  "Memindahkan <b>X</b>: " + bytesText(5) + " dari 2 MB…", "-"));
    spinFor(std::chrono::milliseconds(100));
    EXPECT_THAT(told, SizeIs(3));
}

TEST_F(AppModelMountTests, aMoveThatFailsIsToldAndChangesNothing) {
    auto one = folderItem("Library/Caches/x");
    saveReport({one});
    plugWorkVolume();
    std::filesystem::remove_all(one.path);
    model().offload(one);
    ASSERT_TRUE(isIdle());
    EXPECT_EQ(model().errorMessage(), "Data asal sudah tidak ada.");
    EXPECT_FALSE(model().noticeMessage().has_value());
    EXPECT_THAT(model().report()->items, SizeIs(1));
    EXPECT_THAT(model().selection(), SizeIs(1));
}

TEST_F(AppModelMountTests, aMoveIsWaitedForAndNeverCut) {
    std::ofstream("/box/ditto") << "before() { while [ ! -e /box/answers/go ]; do sleep 0.02; done; }\n";
    const auto one = folderItem("Library/Caches/x");
    plugWorkVolume();
    QSignalSpy ended(&model(), &AppModel::workEnded);
    model().offload(one);
    model().endSoon();
    spinFor(std::chrono::milliseconds(200));
    EXPECT_EQ(ended.count(), 0);
    EXPECT_TRUE(model().hasWorkThatMustEnd());
    model().offload(folderItem("Library/Caches/y")); // too late
    mac.answers.file("go");
    ASSERT_TRUE(waitFor([&] { return ended.count() == 1; }));
    EXPECT_EQ(model().noticeMessage(), "Title of x dipindah ke Kerja (lokasi lama jadi tautan ke SSD).");
    EXPECT_TRUE(PathTools::isSymlink(one.path));
    EXPECT_TRUE(PathTools::isDirectory(home("Library/Caches/y")));
}

TEST_F(AppModelMountTests, whatIsOnItsWayIsNotCleaned) {
    std::ofstream("/box/ditto") << "before() { while [ ! -e /box/answers/go ]; do sleep 0.02; done; }\n";
    const auto one = folderItem("Library/Caches/x");
    const auto within = folderItem("Library/Caches/x/inner");
    const auto beside = folderItem("Library/Caches/xy");
    plugWorkVolume();
    model().offload(one);
    model().requestCleanup({one});
    EXPECT_FALSE(model().pendingCleanup().has_value());
    EXPECT_EQ(model().errorMessage(), "Title of x sedang dipindah ke SSD.");
    model().requestCleanup({one, within, beside});
    EXPECT_THAT(model().pendingCleanup(), Optional(ElementsAre(beside)));
    mac.answers.file("go");
    ASSERT_TRUE(isIdle());
    EXPECT_TRUE(PathTools::isSymlink(one.path));

    const auto again = folderItem("Library/Caches/z");
    std::filesystem::remove_all(again.path);
    model().offload(again); // fails
    ASSERT_TRUE(isIdle());
    mac.home.file("Library/Caches/z/file");
    model().requestCleanup({again});
    EXPECT_THAT(model().pendingCleanup(), Optional(ElementsAre(again)));
}

TEST_F(AppModelMountTests, theLinkToWhatWasMovedIsNotCleaned) {
    const auto one = folderItem("Library/Caches/x");
    saveReport({one});
    plugWorkVolume();
    moved(one);
    startAgain(); // the saved report has it still
    ASSERT_THAT(model().selectedItems(), ElementsAre(one));
    model().requestCleanup(model().selectedItems());
    EXPECT_FALSE(model().pendingCleanup().has_value());
    EXPECT_EQ(model().errorMessage(), "Title of x sudah dipindah ke SSD.");

    std::filesystem::remove(one.path); // a tool made it anew
    mac.home.file("Library/Caches/x/file");
    model().requestCleanup({one});
    EXPECT_THAT(model().pendingCleanup(), Optional(ElementsAre(one)));
}

TEST_F(AppModelMountTests, aFolderComesBack) {
    const auto one = folderItem("Library/Caches/x");
    plugWorkVolume();
    const auto record = moved(one);
    model().restore(record);
    EXPECT_EQ(model().busyMessage(), "Mengembalikan Title of x ke Mac…");
    EXPECT_TRUE(model().hasWorkThatMustEnd());
    ASSERT_TRUE(isIdle());
    EXPECT_EQ(model().noticeMessage(), "Title of x sudah kembali ke lokasi asalnya.");
    EXPECT_EQ(textOf(one.path + "/file"), "12345");
    EXPECT_FALSE(PathTools::isSymlink(one.path));
    EXPECT_TRUE(waitFor([&] { return model().offloads().empty(); }));
    EXPECT_EQ(model().activity().front().kind, "Kembalikan dari SSD");
}

TEST_F(AppModelMountTests, aFolderWhoseDriveIsGoneStaysThere) {
    plugWorkVolume();
    const auto record = moved(folderItem("Library/Caches/x"));
    unplug("Kerja");
    std::filesystem::remove(volumes.path("Kerja"));
    EXPECT_EQ(model().offloadStatus(record), OffloadStatus::volumeMissing);
    model().restore(record);
    ASSERT_TRUE(isIdle());
    EXPECT_TRUE(model().errorMessage().has_value());
    EXPECT_THAT(model().offloads(), SizeIs(1));
}

TEST_F(AppModelMountTests, aRecordIsForgottenAtOnceAndNothingElseIsTouched) {
    const auto path = plugWorkVolume();
    const auto record = moved(folderItem("Library/Caches/x"));
    model().forget(record);
    EXPECT_THAT(model().offloads(), IsEmpty());
    EXPECT_TRUE(PathTools::exists(path + "/Korvanti Offload/Library/Caches/x/file"));
    startAgain();
    EXPECT_THAT(model().offloads(), IsEmpty());
}

// Caches, speed

TEST_F(AppModelMountTests, cachesPointAtTheWorkVolumeAndBack) {
    plugWorkVolume();
    model().relocate({DevCache::npmCache, DevCache::xcodeDerivedData});
    EXPECT_EQ(model().noticeMessage(),
              "Cache dev diarahkan ke Kerja. Buka terminal baru agar Gradle/npm memakainya.");
    EXPECT_FALSE(model().errorMessage().has_value());
    ASSERT_TRUE(waitFor([&] { return model().relocationTargets().size() == 2; }));
    EXPECT_THAT(model().relocationTargets().at(DevCache::npmCache),
                HasSubstr("/Volumes/Kerja/Korvanti Dev/"));
    EXPECT_THAT(textOf(home(".zshenv")), HasSubstr("/Volumes/Kerja/Korvanti Dev/"));
    model().revertRelocation({DevCache::npmCache, DevCache::xcodeDerivedData});
    EXPECT_EQ(model().noticeMessage(), "Cache dev kembali ke lokasi bawaan di Mac.");
    ASSERT_TRUE(waitFor([&] { return model().relocationTargets().empty(); }));
}

TEST_F(AppModelMountTests, cachesStayOffADriveThatCannotHoldThem) {
    auto settings = model().settings();
    settings.workVolumeUUID = "aa-1";
    model().setSettings(settings);
    plug("Kerja", "aa-1", "exfat");
    desktop.mountsChanged();
    ASSERT_TRUE(sees(1));
    model().relocate({DevCache::npmCache});
    EXPECT_TRUE(model().errorMessage().has_value());
    EXPECT_FALSE(model().noticeMessage().has_value());
    EXPECT_FALSE(PathTools::exists(home(".zshenv")));
}

TEST_F(AppModelMountTests, theSpeedOfADriveIsKeptByItsKey) {
    // A full gigabyte: what the test has no room for is a failure.
    plug("Kerja", "aa-1");
    ASSERT_TRUE(sees(1));
    model().speedTest(model().volumes().front());
    EXPECT_EQ(model().speedTesting(), "aa-1");
    ASSERT_TRUE(waitFor([&] { return !model().speedTesting().has_value(); }));
    EXPECT_THAT(model().errorMessage().value_or(""), HasSubstr("Uji kecepatan gagal: "));
    EXPECT_THAT(model().speedResults(), IsEmpty());
    model().dismissError();

    QSignalSpy results(&model(), &AppModel::speedResultsChanged);
    model().speedTest({.mountPath = home("")});
    ASSERT_TRUE(waitFor([&] { return !model().speedTesting().has_value(); }));
    EXPECT_EQ(model().errorMessage(), std::nullopt);
    EXPECT_EQ(results.count(), 1);
    ASSERT_TRUE(model().speedResults().contains(home("")));
    EXPECT_GT(model().speedResults().at(home("")).writeMBps, 0);
}

TEST_F(AppModelMountTests, whatIsEjectedIsNoLongerSeen) {
    plugWorkVolume();
    mac.answerWithScript("diskutil eject /Volumes/Kerja", "umount /Volumes/Kerja");
    model().eject(model().volumes().front());
    EXPECT_FALSE(model().errorMessage().has_value());
    EXPECT_TRUE(sees(0));
}

} // namespace
} // namespace korvanti
