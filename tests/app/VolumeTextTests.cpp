#include "terminal/VolumeText.h"

#include "support/Environment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace korvanti {
namespace {

using korvanti::testing::ScopedVariable;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class VolumeTextTests : public ::testing::Test {
protected:
    ScopedVariable english{"LC_ALL", "en_US.UTF-8"};
};

VolumeInfo drive() {
    return {.name = "Kerja",
            .mountPath = "/Volumes/Kerja",
            .formatName = "APFS",
            .fsType = "apfs",
            .total = 1'000'000'000'000,
            .free = 250'000'000'000,
            .busProtocol = "PCI-Express"};
}

TEST_F(VolumeTextTests, withoutVolumesOneLineSaysSo) {
    EXPECT_THAT(VolumeText::lines({}), ElementsAre("Tidak ada SSD/disk eksternal yang terpasang."));
}

TEST_F(VolumeTextTests, aVolumeHasTwoLinesAndThenItsAdvice) {
    EXPECT_THAT(
        VolumeText::lines({drive()}),
        ElementsAre("\n■ Kerja  /Volumes/Kerja", "  APFS · PCI-Express · 250 GB kosong dari 1 TB",
                    "  ✓ Format APFS: Format terbaik untuk SSD di Mac: cepat, mendukung symlink, izin file, "
                    "clone, dan snapshot.",
                    "  ✓ Koneksi PCI-Express: Jalur cepat (Thunderbolt/USB4), cocok untuk proyek & cache "
                    "build."));
}

TEST_F(VolumeTextTests, eachLevelHasItsSignAndACommandItsLine) {
    auto volume = drive();
    volume.fsType = "hfs";
    volume.busProtocol = std::nullopt;
    volume.ownersEnabled = false;
    EXPECT_THAT(VolumeText::lines({volume}),
                ElementsAre("\n■ Kerja  /Volumes/Kerja", "  APFS · ? · 250 GB kosong dari 1 TB",
                            "  • Format Mac OS Extended: Berfungsi, tapi APFS lebih cepat dan andal untuk "
                            "SSD. Pertimbangkan format ulang ke APFS saat SSD kosong.",
                            "  ⚠︎ Ownership diabaikan: macOS mengabaikan pemilik file di volume ini. Untuk "
                            "proyek & cache dev sebaiknya diaktifkan agar izin executable dan git konsisten.",
                            "      $ sudo diskutil enableOwnership \"/Volumes/Kerja\""));
}

TEST_F(VolumeTextTests, volumesStandInTheirOrder) {
    auto other = drive();
    other.name = "Arsip";
    const auto lines = VolumeText::lines({drive(), other});
    ASSERT_EQ(lines.size(), 8U);
    EXPECT_THAT(lines[0], HasSubstr("Kerja"));
    EXPECT_THAT(lines[4], HasSubstr("Arsip"));
}

TEST_F(VolumeTextTests, whatIsNotToldIsZero) {
    EXPECT_THAT(VolumeText::lines({VolumeInfo{}}),
                ElementsAre("\n■   ", "   · ? · 0 bytes kosong dari 0 bytes",
                            "  • Format : Format ini tidak umum dipakai di Mac."));
}

TEST_F(VolumeTextTests, namesCannotSpeakToTheTerminal) {
    auto volume = drive();
    volume.name = "a\nb\xFF";
    volume.mountPath = "/Volumes/\x1B[2J\n■ x";
    volume.formatName = "F\r";
    volume.fsType = "exfat";
    volume.busProtocol = "U\x07";
    const auto lines = VolumeText::lines({volume});
    EXPECT_EQ(lines.at(0), "\n■ a\uFFFDb\uFFFD  /Volumes/\uFFFD[2J\uFFFD■ x");
    EXPECT_THAT(lines.at(1), HasSubstr("  F\uFFFD · U\uFFFD · "));
    EXPECT_THAT(lines.at(2), HasSubstr("Format F\uFFFD — tidak cocok untuk kerja dev: "));
    EXPECT_THAT(lines.at(3), HasSubstr("Koneksi U\uFFFD: "));
}

TEST_F(VolumeTextTests, aCommandCannotSpeakToTheTerminalEither) {
    auto volume = drive();
    volume.mountPath = "/Volumes/a\nb";
    volume.ownersEnabled = false;
    EXPECT_EQ(VolumeText::lines({volume}).at(4),
              "      $ sudo diskutil enableOwnership \"/Volumes/a\uFFFDb\"");
}

} // namespace
} // namespace korvanti
