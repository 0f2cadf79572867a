#include "support/Environment.h"
#include "terminal/ReportText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace korvanti {
namespace {

using korvanti::testing::ScopedVariable;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

CleanupItem item(std::string title, std::int64_t bytes, ItemCategory category, Safety safety,
                 bool recommended = false) {
    return {.title = std::move(title),
            .path = "/somewhere/else",
            .bytes = bytes,
            .category = category,
            .safety = safety,
            .action = CleanupAction::delete_(),
            .recommended = recommended};
}

class ReportTextTests : public ::testing::Test {
protected:
    std::vector<std::string> lines(ReportText::Options options = {}) const {
        return ReportText::lines(report, instantFromSeconds(1'763'232'179), options);
    }

    /// Sizes are in the system's language.
    ScopedVariable language{"LC_ALL", "en_US.UTF-8"};
    testing::ScopedHome home{"/Users/tester"};
    ScanReport report;
};

TEST_F(ReportTextTests, aWholeReportHasItsLinesInOrder) {
    report.duration = 41.5;
    report.disk = {.total = 245'107'195'904,
                   .available = 14'200'000'000,
                   .availableImportant = 20'280'000'000,
                   .smart = SmartInfo{.percentageUsed = 11, .dataWrittenBytes = 86'400'000'000'000},
                   .swapUsed = 9'430'000'000,
                   .hasFullDiskAccess = true};
    report.items = {item("DerivedData Xcode", 28'600'000'000, ItemCategory::xcode, Safety::regenerable, true),
                    item("Cache npm", 3'440'000'000, ItemCategory::toolchains, Safety::costly),
                    item("Arsip Xcode (.xcarchive)", 21'000'000, ItemCategory::xcode, Safety::review)};
    report.notes = {"Satu catatan."};
    auto all = lines();
    EXPECT_THAT(all.front(), ::testing::StartsWith("\nKORVANTI · "));
    EXPECT_THAT(all.front(), ::testing::EndsWith(" · pindai 42 dtk"));
    all.erase(all.begin());
    EXPECT_THAT(
        all,
        ElementsAre("Disk internal: 14.2 GB kosong dari 245.11 GB (+6.08 GB purgeable)",
                    "Kesehatan SSD: aus 11% · total ditulis 86 TB · swap 9.43 GB", "Full Disk Access: aktif",
                    "", "  Aman                      28.6 GB", "  Aman · unduh ulang        3.44 GB",
                    "  Periksa dulu                21 MB", "  Penting                   0 bytes",
                    "  Dikelola sistem           0 bytes", "  → Rekomendasi Korvanti    28.6 GB", "",
                    "■ Xcode — 28.62 GB bisa dibersihkan",
                    "  ✓   28.6 GB  Aman                DerivedData Xcode",
                    "        21 MB  Periksa dulu        Arsip Xcode (.xcarchive)", "",
                    "■ Paket & toolchain — 3.44 GB bisa dibersihkan",
                    "      3.44 GB  Aman · unduh ulang  Cache npm", "", "ℹ︎ Satu catatan.",
                    "\n✓ = dipilih otomatis oleh 'Rekomendasi'. Mode terminal tidak menghapus apa pun; pakai "
                    "app Korvanti untuk membersihkan."));
}

TEST_F(ReportTextTests, withoutHealthThereIsNoLineOfHealthAndSwap) {
    report.disk.swapUsed = 5'000'000'000;
    EXPECT_THAT(lines(), Not(Contains(HasSubstr("Kesehatan SSD"))));
    EXPECT_THAT(lines(), Not(Contains(HasSubstr("swap"))));
}

TEST_F(ReportTextTests, healthThatIsNotToldIsAQuestionMark) {
    report.disk.smart = SmartInfo{};
    EXPECT_THAT(lines(), Contains("Kesehatan SSD: aus ? · total ditulis ? · swap 0 bytes"));
}

TEST_F(ReportTextTests, missingDiskAccessIsSaid) {
    EXPECT_THAT(lines(), Contains("Full Disk Access: BELUM — sebagian folder tidak terbaca"));
}

TEST_F(ReportTextTests, twelveItemsOfACategoryNeedNoFurtherLine) {
    report.items.assign(12, item("Item", 1'000'000, ItemCategory::xcode, Safety::regenerable));
    EXPECT_THAT(lines(), Not(Contains(HasSubstr("item lain"))));
}

TEST_F(ReportTextTests, theThirteenthItemOfACategoryIsCountedButNotShown) {
    report.items.assign(13, item("Item", 1'000'000, ItemCategory::xcode, Safety::regenerable));
    const auto all = lines();
    EXPECT_EQ(std::ranges::count(all, "         1 MB  Aman                Item"), 12);
    EXPECT_THAT(all, Contains("    … 1 item lain (pakai --all)"));
}

TEST_F(ReportTextTests, allItemsAreShownWithTheirPathsWhenAsked) {
    report.items.assign(13, item("Item", 1'000'000, ItemCategory::xcode, Safety::regenerable));
    report.items.back().path = "/Users/tester/Library";
    const auto all = lines({.allItems = true});
    EXPECT_EQ(std::ranges::count(all, "         1 MB  Aman                Item"), 13);
    EXPECT_EQ(std::ranges::count(all, "      /somewhere/else"), 12);
    EXPECT_THAT(all, Contains("      ~/Library"));
    EXPECT_THAT(all, Not(Contains(HasSubstr("item lain"))));
}

TEST_F(ReportTextTests, warningsStandUnderTheirItemInBothForms) {
    report.items = {item("Item", 1'000'000, ItemCategory::xcode, Safety::regenerable)};
    report.items[0].warnings = {"Satu.", "Dua."};
    EXPECT_THAT(lines(), ::testing::IsSupersetOf({"      ⚠︎ Satu.", "      ⚠︎ Dua."}));
    EXPECT_THAT(lines({.allItems = true}), ::testing::IsSupersetOf({"      ⚠︎ Satu.", "      ⚠︎ Dua."}));
}

TEST_F(ReportTextTests, aCategoryOfKeptItemsHasAHeaderOfZero) {
    report.items = {item("Memori", 5'000'000, ItemCategory::aiTools, Safety::keep),
                    item("Data", 7'000'000, ItemCategory::aiTools, Safety::managed)};
    EXPECT_THAT(lines(), ::testing::IsSupersetOf({"■ Tool AI & editor — 0 bytes bisa dibersihkan",
                                                  "         5 MB  Penting             Memori",
                                                  "         7 MB  Dikelola sistem     Data"}));
}

TEST_F(ReportTextTests, aSizeWiderThanItsColumnPushesTheRestToTheRight) {
    report.items = {item("Lebar", -999'990'000'000, ItemCategory::xcode, Safety::regenerable)};
    EXPECT_THAT(lines(), Contains("    -999.99 GB  Aman                Lebar"));
}

TEST_F(ReportTextTests, sizesAreInTheLanguageOfTheSystem) {
    const ScopedVariable indonesian("LC_ALL", "id_ID.UTF-8");
    report.items = {item("Item", 999, ItemCategory::xcode, Safety::regenerable)};
    EXPECT_THAT(lines(), Contains("     999 byte  Aman                Item"));
}

TEST_F(ReportTextTests, charactersAreCountedAndNotBytes) {
    report.items = {item("Item", 1'000'000, ItemCategory::xcode, Safety::costly)};
    EXPECT_THAT(lines(), Contains("         1 MB  Aman · unduh ulang  Item"));
}

TEST_F(ReportTextTests, namesFromTheDiskCanNeitherBreakALineNorSpeakToTheTerminal) {
    report.items = {item("Cache (a\nb\x1b[31m\xff)", 1'000'000, ItemCategory::xcode, Safety::regenerable)};
    report.items[0].path = "/x\ny";
    const auto all = lines({.allItems = true});
    EXPECT_THAT(all, Contains("         1 MB  Aman                Cache (a\uFFFDb\uFFFD[31m\uFFFD)"));
    EXPECT_THAT(all, Contains("      /x\uFFFDy"));
}

TEST_F(ReportTextTests, anEmptyReportHasNoSection) {
    EXPECT_THAT(lines(), Not(Contains(HasSubstr("■"))));
}

} // namespace
} // namespace korvanti
