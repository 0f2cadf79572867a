#include "drives/VolumeAdvisor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Level = Advice::Level;

/// Nothing but its format is worth a line.
VolumeInfo plainVolume(const std::string& fsType = "apfs") {
    return {.name = "Kerja", .mountPath = "/Volumes/Kerja", .formatName = "Nama Format", .fsType = fsType};
}

std::vector<std::string> titlesFor(const VolumeInfo& volume) {
    std::vector<std::string> titles;
    for (const auto& advice : VolumeAdvisor::advice(volume))
        titles.push_back(advice.title);
    return titles;
}

/// What comes besides the line on the format.
std::vector<Advice> besidesFormat(const VolumeInfo& volume) {
    auto all = VolumeAdvisor::advice(volume);
    EXPECT_FALSE(all.empty());
    EXPECT_TRUE(all.front().title.starts_with("Format "));
    all.erase(all.begin());
    return all;
}

// Each text as it was agreed.

const Advice apfs{
    Level::good, "Format APFS",
    "Format terbaik untuk SSD di Mac: cepat, mendukung symlink, izin file, clone, dan snapshot."};
const Advice hfs{Level::info, "Format Mac OS Extended",
                 // clang-format off
    "Berfungsi, tapi APFS lebih cepat dan andal untuk SSD. Pertimbangkan format ulang ke APFS saat SSD kosong."};
const Advice unfit{
    Level::warning, "Format Nama Format — tidak cocok untuk kerja dev",
    "Tanpa journaling dan izin file Unix: repo git, symlink, cache Gradle/Xcode bisa rusak bila SSD tercabut. Pakai hanya untuk foto/video, atau pindahkan isinya dulu lalu format ulang ke APFS lewat Disk Utility › Erase (isi SSD terhapus)."};
const Advice uncommon{Level::info, "Format Nama Format", "Format ini tidak umum dipakai di Mac."};
const Advice ownership{
    Level::warning, "Ownership diabaikan",
    "macOS mengabaikan pemilik file di volume ini. Untuk proyek & cache dev sebaiknya diaktifkan agar izin executable dan git konsisten.",
    "sudo diskutil enableOwnership \"/Volumes/Kerja\""};
const Advice noSSD{
    Level::warning, "Bukan SSD",
    "Disk berputar (HDD) terlalu lambat untuk build. Pakai untuk arsip & backup saja."};
const char* const fastConnection = "Jalur cepat (Thunderbolt/USB4), cocok untuk proyek & cache build.";
const char* const slowConnection =
    "USB biasa cukup untuk arsip & cache. Untuk menaruh proyek/DerivedData, enclosure Thunderbolt/USB4 NVMe 2–4× lebih cepat.";
const Advice notEncrypted{
    Level::info, "Tidak terenkripsi",
    "Kode, keystore, dan sesi login di SSD bisa dibaca orang lain bila SSD hilang. Pertimbangkan APFS (Encrypted)."};
const Advice almostFull{Level::warning, "SSD hampir penuh",
                        "Sisakan minimal 10–15% agar kinerja SSD tetap stabil."};
// clang-format on

TEST(VolumeAdvisorTests, eachFormatHasItsLine) {
    EXPECT_THAT(VolumeAdvisor::advice(plainVolume("apfs")), ElementsAre(apfs));
    EXPECT_THAT(VolumeAdvisor::advice(plainVolume("hfs")), ElementsAre(hfs));
    EXPECT_THAT(VolumeAdvisor::advice(plainVolume("exfat")), ElementsAre(unfit));
    EXPECT_THAT(VolumeAdvisor::advice(plainVolume("msdos")), ElementsAre(unfit));
    for (const auto* other : {"ntfs", "ext4", "", "APFS", "ExFAT", "hfsx"})
        EXPECT_THAT(VolumeAdvisor::advice(plainVolume(other)), ElementsAre(uncommon)) << other;
}

TEST(VolumeAdvisorTests, theIdentityOfALineIsItsTitle) {
    EXPECT_EQ(apfs.id(), "Format APFS");
}

TEST(VolumeAdvisorTests, ignoredOwnershipIsAWarningOnTheMacsOwnFormatsOnly) {
    for (const auto* fsType : {"apfs", "hfs"}) {
        auto volume = plainVolume(fsType);
        volume.ownersEnabled = false;
        EXPECT_THAT(besidesFormat(volume), ElementsAre(ownership)) << fsType;
        volume.ownersEnabled = true;
        EXPECT_THAT(besidesFormat(volume), IsEmpty());
        volume.ownersEnabled = std::nullopt;
        EXPECT_THAT(besidesFormat(volume), IsEmpty());
    }
}

TEST(VolumeAdvisorTests, exfatGetsNoLineOnOwnershipAndNoneOnEncryption) {
    for (const auto* fsType : {"exfat", "msdos", "ntfs"}) {
        auto volume = plainVolume(fsType);
        volume.ownersEnabled = false;
        volume.encrypted = false;
        EXPECT_THAT(besidesFormat(volume), IsEmpty()) << fsType;
    }
}

TEST(VolumeAdvisorTests, theCommandNamesTheMountPathAsOneWordForAnyShell) {
    const auto commandFor = [](const std::string& mountPath) {
        auto volume = plainVolume();
        volume.mountPath = mountPath;
        volume.ownersEnabled = false;
        return besidesFormat(volume).at(0).command;
    };
    EXPECT_EQ(commandFor("/Volumes/Kerja Lama"), "sudo diskutil enableOwnership \"/Volumes/Kerja Lama\"");
    EXPECT_EQ(commandFor("/Volumes/it's & co; *"), "sudo diskutil enableOwnership \"/Volumes/it's & co; *\"");
    EXPECT_EQ(commandFor("/Volumes/$(rm -rf ~)\"`id`\\"),
              "sudo diskutil enableOwnership \"/Volumes/\\$(rm -rf ~)\\\"\\`id\\`\\\\\"");
}

TEST(VolumeAdvisorTests, aSpinningDiskIsAWarning) {
    for (const auto* fsType : {"apfs", "hfs", "exfat", "ntfs"}) {
        auto volume = plainVolume(fsType);
        volume.solidState = false;
        EXPECT_THAT(besidesFormat(volume), ElementsAre(noSSD)) << fsType;
        volume.solidState = true;
        EXPECT_THAT(besidesFormat(volume), IsEmpty());
    }
}

TEST(VolumeAdvisorTests, theConnectionIsFastByWhatItsNameContains) {
    for (const auto* fast : {"Thunderbolt", "PCI-Express", "PCI", "Apple PCIe", "USB4/Thunderbolt 4"}) {
        auto volume = plainVolume();
        volume.busProtocol = fast;
        EXPECT_THAT(besidesFormat(volume),
                    ElementsAre(Advice{Level::good, "Koneksi " + std::string(fast), fastConnection}));
    }
    for (const auto* slow : {"USB", "SATA", "Disk Image", "thunderbolt", "pci-express", "pci", "P C I", ""}) {
        auto volume = plainVolume("exfat");
        volume.busProtocol = slow;
        EXPECT_THAT(besidesFormat(volume),
                    ElementsAre(Advice{Level::info, "Koneksi " + std::string(slow), slowConnection}));
    }
}

TEST(VolumeAdvisorTests, whatIsNotEncryptedIsToldOnTheMacsOwnFormats) {
    for (const auto* fsType : {"apfs", "hfs"}) {
        auto volume = plainVolume(fsType);
        volume.encrypted = false;
        EXPECT_THAT(besidesFormat(volume), ElementsAre(notEncrypted)) << fsType;
        volume.encrypted = true;
        EXPECT_THAT(besidesFormat(volume), IsEmpty());
        volume.encrypted = std::nullopt;
        EXPECT_THAT(besidesFormat(volume), IsEmpty());
    }
}

TEST(VolumeAdvisorTests, belowATenthOfFreeSpaceAVolumeIsAlmostFull) {
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    struct Row {
        std::int64_t free;
        std::int64_t total;
        bool told;
    };
    for (const auto& [free, total, told] :
         {Row{100, 1000, false}, Row{99, 1000, true}, Row{1, 10, false}, Row{0, 1, true}, Row{1, 1, false},
          Row{100'000'000'000, 1'000'000'000'000, false}, Row{99'999'999'999, 1'000'000'000'000, true},
          Row{0, 0, false}, Row{5, 0, false}, Row{0, -1, false}, Row{-5, 0, false}, Row{-5, 100, true},
          Row{largest, largest, false}, Row{0, largest, true}, Row{largest, 1, false}}) {
        auto volume = plainVolume("ntfs");
        volume.free = free;
        volume.total = total;
        EXPECT_EQ(besidesFormat(volume), told ? std::vector{almostFull} : std::vector<Advice>())
            << free << " of " << total;
    }
}

TEST(VolumeAdvisorTests, fromEightyPercentOnWearIsAWarning) {
    const auto linesAt = [](std::optional<std::int64_t> percent) {
        auto volume = plainVolume("exfat");
        volume.smart = SmartInfo{.percentageUsed = percent, .status = "Verified"};
        return besidesFormat(volume);
    };
    EXPECT_THAT(linesAt(79), IsEmpty());
    EXPECT_THAT(linesAt(80),
                ElementsAre(Advice{Level::warning, "Keausan SSD 80%", "Siapkan backup & pengganti."}));
    EXPECT_THAT(linesAt(255),
                ElementsAre(Advice{Level::warning, "Keausan SSD 255%", "Siapkan backup & pengganti."}));
    EXPECT_THAT(linesAt(0), IsEmpty());
    EXPECT_THAT(linesAt(-1), IsEmpty());
    EXPECT_THAT(linesAt(std::nullopt), IsEmpty());
}

TEST(VolumeAdvisorTests, allRulesSpeakInTheirOrderAndNoneStopsAnother) {
    auto volume = plainVolume("hfs");
    volume.ownersEnabled = false;
    volume.solidState = false;
    volume.busProtocol = "USB";
    volume.encrypted = false;
    volume.total = 100;
    volume.smart = SmartInfo{.percentageUsed = 91};
    EXPECT_THAT(titlesFor(volume),
                ElementsAre("Format Mac OS Extended", "Ownership diabaikan", "Bukan SSD", "Koneksi USB",
                            "Tidak terenkripsi", "SSD hampir penuh", "Keausan SSD 91%"));
}

TEST(VolumeAdvisorTests, onlyTheLineOnOwnershipHasACommand) {
    auto volume = plainVolume("apfs");
    volume.ownersEnabled = false;
    volume.solidState = false;
    volume.busProtocol = "USB";
    volume.encrypted = false;
    volume.total = 100;
    volume.smart = SmartInfo{.percentageUsed = 91};
    for (const auto& advice : VolumeAdvisor::advice(volume))
        EXPECT_EQ(advice.command.has_value(), advice.title == "Ownership diabaikan") << advice.title;
}

} // namespace
} // namespace korvanti
