#include "PictureSupport.h"

#include <expected>

namespace korvanti {
namespace {

using namespace korvanti::testing;

TEST_P(PictureTests, theOverview) {
    open(Pane::overview);
    take("overview");
}

TEST_P(PictureTests, theOverviewWithRoomToSpare) {
    space.emplace(samplePlentyBytes, sampleTotalBytes);
    open(Pane::overview);
    take("overview-plenty");
}

TEST_P(PictureTests, theOverviewThatAsksForAccess) {
    report.disk.hasFullDiskAccess = false;
    open(Pane::overview);
    take("overview-access");
}

TEST_P(PictureTests, theOverviewOfACleanMac) {
    report.items.clear();
    report.notes.clear();
    report.disk.smart.reset();
    report.disk.swapUsed = 0;
    open(Pane::overview);
    take("overview-zero");
}

TEST_P(PictureTests, theMacThatWasNeverScanned) {
    show("OverviewView { anchors.fill: parent }", GetParam().size,
         {{"frame", QVariant::fromValue(&frame())}, {"model", QVariant::fromValue(&overview())}});
    take("empty");
}

TEST_P(PictureTests, theFirstScan) {
    mac.answerWithScript("diskutil info -plist /", "exec sleep 3");
    openUnscanned();
    ASSERT_TRUE(waitFor([&] { return model().scanStatus() == "Membaca kondisi disk…"; }));
    take("scanning");
}

TEST_P(PictureTests, aLaterScan) {
    mac.answerWithScript("diskutil info -plist /", "exec sleep 3");
    open(Pane::overview);
    model().scan();
    ASSERT_TRUE(waitFor([&] { return model().scanStatus() == "Membaca kondisi disk…"; }));
    take("rescanning");
}

TEST_P(PictureTests, messagesAboveThePane) {
    open(Pane::overview);
    desktop.loginItem = std::unexpected("Operation not permitted");
    model().setLoginItem(true);
    model().revertRelocation({DevCache::npmCache});
    take("messages");
}

INSTANTIATE_TEST_SUITE_P(EachLook, PictureTests, eachLook, nameOfLook);

} // namespace
} // namespace korvanti
