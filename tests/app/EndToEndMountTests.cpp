#include "EndToEnd.h"
#include "Screen.h"
#include "support/Mount.h"

#include <cstdint>
#include <fstream>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace korvanti::testing {
namespace {

using ::testing::ElementsAre;

/// Needs the right to mount: runs in the box as root.
class EndToEndMountTests : public EndToEnd {
protected:
    void SetUp() override {
        occupy("Library/Developer/Xcode/DerivedData", 21'000'000);
        volume_.emplace(mac.home.folder("Library/Developer/Xcode/DerivedData/volume"));
        occupy("Library/Developer/Xcode/DerivedData/volume", 50'000'000);
    }

private:
    std::optional<Mount> volume_;
};

TEST_F(EndToEndMountTests, warnsOfAVolumeInsideALocationAndDoesNotCountIt) {
    EXPECT_THAT(sectionOf(korvanti({"--report"}).out, "■ Xcode"),
                ElementsAre("■ Xcode — 21 MB bisa dibersihkan",
                            "  ✓     21 MB  Aman                DerivedData Xcode",
                            "      ⚠︎ Berisi volume ter-mount; bagian itu dilewati."));
}

TEST_F(EndToEndMountTests, warnsBehindThePathInTheFullReport) {
    EXPECT_THAT(sectionOf(korvanti({"--report", "--all"}).out, "■ Xcode"),
                ElementsAre("■ Xcode — 21 MB bisa dibersihkan",
                            "  ✓     21 MB  Aman                DerivedData Xcode",
                            "      ~/Library/Developer/Xcode/DerivedData",
                            "      ⚠︎ Berisi volume ter-mount; bagian itu dilewati."));
}

TEST_F(EndToEndMountTests, warnsInTheJson) {
    const auto items = nlohmann::json::parse(korvanti({"--json"}).out).at("items");

    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(items[0].at("warnings"), nlohmann::json({"Berisi volume ter-mount; bagian itu dilewati."}));
    EXPECT_EQ(items[0].at("bytes"), 21'000'192);
}

// A disk without a byte left

TEST_F(EndToEnd, theWindowOpensOnAFullDisk) {
    const Mount home("/Users/tester", 40'000'000);
    occupy("Library/Developer/CoreSimulator/Caches", 30'000'000);
    {
        std::ofstream rest(mac.home.path("rest"), std::ios::binary);
        while (rest << std::string(4096, 'x') << std::flush)
            continue;
    }
    const Screen screen(1280, 900);
    auto environment = screen.environment();
    environment.erase("QT_QUICK_BACKEND"); // drawn by Mesa, as for the user
    environment.insert(
        {{"HOME", "/Users/tester"}, {"XDG_CACHE_HOME", "/Users/tester/.cache"}, {"LC_ALL", "C.UTF-8"}});
    BackgroundProgram program({KORVANTI_EXECUTABLE}, environment);
    constexpr std::uint32_t heroFill = 0x08375F; // the card of the recommendation, when it has scanned
    EXPECT_TRUE(screen.waitForRow(heroFill, 60));
    EXPECT_EQ(program.ended(), std::nullopt);
}

// --volumes

class EndToEndVolumesTests : public EndToEnd {
protected:
    void SetUp() override { occupy("Library/Developer/Xcode/DerivedData", 21'000'000); }

    /// What every drive below is told to be.
    void answerFor(const std::string& mountPath) const {
        mac.answer("diskutil info -plist " + mountPath,
                   R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>)"
                   "<key>FilesystemType</key><string>apfs</string>"
                   "<key>FilesystemUserVisibleName</key><string>APFS</string>"
                   "<key>GlobalPermissionsEnabled</key><false/></dict></plist>");
    }

    BoxFolder volumes{"/Volumes"};
};

TEST_F(EndToEndVolumesTests, saysThatThereAreNoExternalVolumes) {
    const auto result = korvanti({"--volumes"});
    EXPECT_EQ(result.out, "Tidak ada SSD/disk eksternal yang terpasang.\n");
    EXPECT_EQ(result.err, "");
}

TEST_F(EndToEndVolumesTests, listsTheVolumesWithTheirAdvice) {
    const Mount mount(volumes.folder("Kerja\nLama"), 21'000 * 4096);
    answerFor("/Volumes/Kerja\nLama");
    const auto result = korvanti({"--volumes"});
    EXPECT_THAT(linesOf(result.out),
                ElementsAre("", "■ Kerja\uFFFDLama  /Volumes/Kerja\uFFFDLama",
                            "  APFS · ? · 86 MB kosong dari 86 MB",
                            "  ✓ Format APFS: Format terbaik untuk SSD di Mac: cepat, mendukung symlink, "
                            "izin file, clone, dan snapshot.",
                            "  ⚠︎ Ownership diabaikan: macOS mengabaikan pemilik file di volume ini. Untuk "
                            "proyek & cache dev sebaiknya diaktifkan agar izin executable dan git konsisten.",
                            "      $ sudo diskutil enableOwnership \"/Volumes/Kerja\uFFFDLama\""));
    EXPECT_EQ(result.err, "");
}

TEST_F(EndToEndVolumesTests, prefersTheVolumesToAReport) {
    const auto volumesOnly = korvanti({"--volumes"}).out;
    EXPECT_EQ(korvanti({"--report", "--volumes", "--all"}).out, volumesOnly);
    EXPECT_EQ(korvanti({"--map", "--volumes"}).out, volumesOnly);
}

TEST_F(EndToEndVolumesTests, prefersTheJsonAndTheUsageTextToTheVolumes) {
    EXPECT_EQ(korvanti({"--volumes", "--json"}).out.front(), '{');
    EXPECT_EQ(korvanti({"--volumes", "--help"}).out, korvanti({"--help"}).out);
}

TEST_F(EndToEndVolumesTests, listingTheVolumesChangesNothing) {
    const Mount mount(volumes.folder("Kerja"));
    volumes.file("Kerja/file", {.text = "mine"});
    const auto before = picture(mac.home.path());
    const auto beforeOnVolume = picture(volumes.path());
    static_cast<void>(korvanti({"--volumes"}));
    EXPECT_EQ(picture(mac.home.path()), before);
    EXPECT_EQ(picture(volumes.path()), beforeOnVolume);
}

} // namespace
} // namespace korvanti::testing
