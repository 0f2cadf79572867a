#include "PictureSupport.h"
#include "SsdSupport.h"

#include <cstddef>
#include <filesystem>

namespace korvanti {
namespace {

using namespace korvanti::testing;

/// The pane of the drives, on a Mac that some are plugged into.
class DrivePictureTests : public PictureTests {
protected:
    DrivePictureTests() { layReport(); }

    void open(std::size_t count) {
        model().setPane(Pane::ssd);
        openUnscanned();
        space.emplace(612'400'000'000, 1'000'000'000'000);
        model().refreshVolumes();
        ASSERT_TRUE(waitFor([&] { return model().volumes().size() == count; }));
        settle();
    }
    void scrollTo(double y) { item("ssdScroll").setProperty("contentY", y); }

    BoxDrives drives{mac};
    const BoxDrives::Drive forWork{
        .uuid = "aa-1",
        .facts = "<key>BusProtocol</key><string>USB</string><key>GlobalPermissionsEnabled</key><false/>"};
    const BoxDrives::Drive forPhotos{.uuid = "aa-2", .fsType = "exfat", .formatName = "ExFAT"};
};

TEST_P(DrivePictureTests, noDrive) {
    open(0);
    take("ssd-none");
}

TEST_P(DrivePictureTests, aDriveForWorkAndAnotherOne) {
    drives.plug("Samsung T9 Kerja", forWork);
    drives.plug("Foto", forPhotos);
    auto settings = model().settings();
    settings.workVolumeUUID = "aa-1";
    model().setSettings(settings);
    open(2);
    ssd().toggleCache(1);
    model().relocate({DevCache::gradleHome});
    model().dismissNotice();
    ASSERT_TRUE(waitFor([&] { return model().relocationTargets().size() == 1; }));
    take("ssd");
    scrollTo(300);
    take("ssd-caches");
}

TEST_P(DrivePictureTests, aDriveOfAnotherFormat) {
    drives.plug("Foto", forPhotos);
    open(1);
    take("ssd-exfat");
}

TEST_P(DrivePictureTests, whatWasMoved) {
    const auto path = drives.plug("Samsung T9 Kerja", forWork);
    std::filesystem::create_directories(path + "/Korvanti Offload/Library/Developer/Xcode/Archives");
    auto archives =
        movedRecord("Arsip Xcode (.xcarchive)", path + "/Korvanti Offload/Library/Developer/Xcode/Archives");
    archives.originalPath = "/Users/tester/Library/Developer/Xcode/Archives";
    auto model = movedRecord("Model qwen2.5-coder-7b", path + "/Korvanti Offload/.lmstudio/models");
    model.originalPath = "/Users/tester/.lmstudio/models/qwen2.5-coder-7b";
    model.bytes = 3'050'000'000;
    saveRecords(mac, {archives, model, movedRecord("Dataset", "/Volumes/Lama/Korvanti Offload/Dataset")});
    open(1);
    const auto& pane = item("ssdScroll");
    scrollTo(pane.property("contentHeight").toDouble() - pane.height());
    take("ssd-moved");
}

INSTANTIATE_TEST_SUITE_P(EachLook, DrivePictureTests, eachLook, nameOfLook);

} // namespace
} // namespace korvanti
