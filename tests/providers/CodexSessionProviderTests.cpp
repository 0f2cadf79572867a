#include "providers/CodexSessionProvider.h"

#include "support/Environment.h"
#include "support/Items.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

constexpr std::int64_t block = 4096;
constexpr std::int64_t justBelow20MB = 20'000'000 / block * block;
constexpr std::int64_t justAbove20MB = justBelow20MB + block;

/// Makes a time zone the system's own and puts the old one back at the end.
class ScopedZone {
public:
    explicit ScopedZone(const std::string& name) : variable_(std::in_place, "TZ", name) { ::tzset(); }
    ~ScopedZone() {
        variable_.reset();
        ::tzset();
    }
    ScopedZone(const ScopedZone&) = delete;
    ScopedZone& operator=(const ScopedZone&) = delete;

private:
    std::optional<testing::ScopedVariable> variable_;
};

class CodexSessionProviderTests : public ::testing::Test {
protected:
    std::string sessions(const std::string& yearAndMonth, std::int64_t bytes = justAbove20MB) const {
        home.file(".codex/sessions/" + yearAndMonth + "/15/rollout.jsonl", {.allocatedBytes = bytes});
        return home.path(".codex/sessions/" + yearAndMonth);
    }

    [[nodiscard]] std::vector<CleanupItem> items(const char* now = "2026-11-15T12:00:00Z") const {
        ScanContext context;
        context.home = home.path();
        context.now = instantFromIso8601(now).value_or(Instant());
        return testing::itemsOfOneScan(CodexSessionProvider(), context);
    }
    /// The years and months of the items.
    [[nodiscard]] std::vector<std::string> found(const char* now = "2026-11-15T12:00:00Z") const {
        const auto root = home.path(".codex/sessions/");
        std::vector<std::string> found;
        for (const auto& item : items(now))
            found.push_back(item.path.substr(root.size()));
        return found;
    }

    testing::TempFolder home;
    ScopedZone zone{"UTC"};
};

TEST_F(CodexSessionProviderTests, hasItsNameAndPriority) {
    EXPECT_EQ(CodexSessionProvider().name(), "Riwayat Codex");
    EXPECT_EQ(CodexSessionProvider().priority(), 80);
}

TEST_F(CodexSessionProviderTests, findsNothingInAnEmptyHome) {
    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(CodexSessionProviderTests, offersThePastMonthsForReview) {
    const auto path = sessions("2026/08");
    home.setModified(".codex/sessions/2026/08", 1'600'000'000);

    EXPECT_THAT(items(),
                ElementsAre(CleanupItem{
                    .title = "Riwayat sesi Codex · Agustus 2026",
                    .detail = "Transkrip percakapan Codex bulan itu. Sesi lama tidak bisa dilanjutkan lagi "
                              "bila dihapus; pindahkan ke SSD bila ingin disimpan.",
                    .path = path,
                    .bytes = justAbove20MB,
                    .category = ItemCategory::aiTools,
                    .safety = Safety::review,
                    .action = CleanupAction::trash(),
                    .recommended = false,
                    .lastActivity = instantFromSeconds(1'600'000'000),
                    .offloadable = true}));
}

// Which months

TEST_F(CodexSessionProviderTests, leavesTheMonthInProgressAndTheFutureAlone) {
    for (const char* month : {"2026/10", "2026/11", "2026/12", "2027/01", "2025/11", "2025/12"})
        sessions(month);

    EXPECT_THAT(found(), UnorderedElementsAre("2026/10", "2025/11", "2025/12"));
}

TEST_F(CodexSessionProviderTests, countsOnFromDecemberToJanuary) {
    sessions("2025/11");
    sessions("2025/12");
    sessions("2026/01");

    EXPECT_THAT(found("2025-12-31T23:59:59Z"), UnorderedElementsAre("2025/11"));
    EXPECT_THAT(found("2026-01-01T00:00:00Z"), UnorderedElementsAre("2025/11", "2025/12"));
    EXPECT_THAT(found("2026-02-01T00:00:00Z"), UnorderedElementsAre("2025/11", "2025/12", "2026/01"));
}

TEST_F(CodexSessionProviderTests, takesTheMonthFromTheCalendarOfTheSystemsZone) {
    sessions("2026/10");
    EXPECT_THAT(found("2026-10-31T20:00:00Z"), IsEmpty());
    {
        const ScopedZone jakarta("Asia/Jakarta");
        EXPECT_THAT(found("2026-10-31T16:59:59Z"), IsEmpty());
        EXPECT_THAT(found("2026-10-31T17:00:00Z"), ElementsAre("2026/10"));
    }
    const ScopedZone losAngeles("America/Los_Angeles");
    EXPECT_THAT(found("2026-11-01T06:59:59Z"), IsEmpty());
    EXPECT_THAT(found("2026-11-01T07:00:00Z"), ElementsAre("2026/10"));
}

TEST_F(CodexSessionProviderTests, passesOverEntriesThatAreNoNumbers) {
    for (const char* month :
         {"2026/aug", "2026/08x", "2026/ 8", "2026/8 ", "2026/8.0", "2026/0x8", "2026/--8", "2026/+-8",
          "2026/+", "2026/\xd9\xa8", "archive/08", "2026-old/08", "twenty/8", "2026 /8"})
        sessions(month);
    sessions("2026/8");

    EXPECT_THAT(found(), ElementsAre("2026/8"));
}

TEST_F(CodexSessionProviderTests, readsNumbersWithSignsAndZeros) {
    const std::pair<const char*, const char*> rows[] = {
        {"2026/8", "Agustus 2026"},   {"2026/008", "Agustus 2026"}, {"2026/+8", "Agustus 2026"},
        {"+2026/08", "Agustus 2026"}, {"02026/08", "Agustus 2026"}, {"2025/13", "13/2025"},
        {"2026/0", "0/2026"},         {"2026/-3", "-3/2026"},
    };
    for (const auto& [month, text] : rows) {
        SCOPED_TRACE(month);
        const auto path = sessions(month);
        const auto all = items();
        const auto item = std::ranges::find(all, path, &CleanupItem::path);
        ASSERT_NE(item, all.end());
        EXPECT_EQ(item->title, "Riwayat sesi Codex · " + std::string(text));
    }
}

TEST_F(CodexSessionProviderTests, comparesByTheSumEvenWhereNoCalendarHasTheMonth) {
    sessions("2025/22"); // October 2026
    sessions("2025/23"); // November 2026
    sessions("2027/-2"); // October 2026
    sessions("2027/-1"); // November 2026

    EXPECT_THAT(found(), UnorderedElementsAre("2025/22", "2027/-2"));
}

TEST_F(CodexSessionProviderTests, standsNumbersOfAnySize) {
    for (const char* month :
         {"-2147483648/-2147483648", "-2147483649/1", "2026/-2147483649", "-9223372036854775808/1",
          "2026/-9223372036854775808", "9223372036854775807/-9223372036854775808", "-99999999999999999999/1",
          "2147483647/-2147483648", "-5/3"})
        sessions(month);

    EXPECT_THAT(found(), UnorderedElementsAre("-2147483648/-2147483648", "-5/3"));
}

TEST_F(CodexSessionProviderTests, looksNoDeeperThanMonths) {
    sessions("2026/old/08");
    sessions("backup/2026/08");

    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(CodexSessionProviderTests, takesAFileForAMonthAndNotForAYear) {
    home.file(".codex/sessions/2026/08", {.allocatedBytes = justAbove20MB});
    home.file(".codex/sessions/2025", {.allocatedBytes = justAbove20MB});

    EXPECT_THAT(found(), ElementsAre("2026/08"));
}

TEST_F(CodexSessionProviderTests, yieldsNothingForALinkToAMonth) {
    home.file("elsewhere/file", {.allocatedBytes = justAbove20MB});
    home.folder(".codex/sessions/2026");
    home.symlink(".codex/sessions/2026/08", home.path("elsewhere"));

    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(CodexSessionProviderTests, passesOverAYearThatCannotBeRead) {
    sessions("2026/08");
    home.symlink(".codex/sessions/2025", home.path("missing"));

    EXPECT_THAT(found(), ElementsAre("2026/08"));
}

// Which sizes

TEST_F(CodexSessionProviderTests, shows20MBAndHidesLess) {
    sessions("2026/08", justAbove20MB);
    const auto little = sessions("2026/09", justBelow20MB);
    ASSERT_EQ(testing::blocksOf(little + "/15/rollout.jsonl"), justBelow20MB);

    EXPECT_THAT(found(), ElementsAre("2026/08"));
}

TEST_F(CodexSessionProviderTests, addsUpTheDaysOfAMonth) {
    sessions("2026/08", justBelow20MB);
    home.file(".codex/sessions/2026/08/16/rollout.jsonl", {.allocatedBytes = block});

    const auto all = items();

    ASSERT_THAT(all, SizeIs(1));
    EXPECT_EQ(all[0].bytes, justAbove20MB);
}

} // namespace
} // namespace korvanti
