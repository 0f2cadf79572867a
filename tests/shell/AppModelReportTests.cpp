#include "ModelFixture.h"
#include "base/Instant.h"
#include "base/Text.h"

#include <QElapsedTimer>
#include <array>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <set>
#include <string>
#include <utility>
#include <vector>

/// The saved report, damaged and huge. In the box.
namespace korvanti {
namespace {

using namespace korvanti::testing;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class AppModelReportTests : public ModelFixture {
protected:
    static std::string numbered(std::string text, std::size_t number) {
        return Text::replaced(text, "#", std::to_string(number));
    }
    /// Like what a scan finds, with "#" for a number; each tenth has a name that is no plain ASCII.
    static CleanupItem itemLike(std::size_t number) {
        auto one = item("/Users/tester/Projects/Number #");
        one.title = number % 10 == 0 ? "Proyek # — Ärger" : "Proyek # tanpa kegiatan";
        one.category = number % 2 == 0 ? ItemCategory::projects : ItemCategory::appCaches;
        return one;
    }
    static CleanupItem numberedItem(std::size_t number) {
        auto one = itemLike(number);
        one.title = numbered(one.title, number);
        one.path = numbered(one.path, number);
        return one;
    }
    static std::string savedAs(const std::vector<CleanupItem>& items) {
        ScanReport report;
        report.startedAt = instantFromSeconds(1'700'000'000);
        report.items = items;
        return compactJson(toJson(report));
    }
    [[nodiscard]] bool isRead(const std::string& text) {
        startAgain();
        saveText(text);
        return model().report().has_value();
    }
};

TEST_F(AppModelReportTests, itIsWrittenCompactAndInTheOrderOfItsFields) {
    const auto kept = item("/a/b");
    const auto cleaned = folderItem("Library/Caches/x");
    saveReport({kept, cleaned});
    clean({cleaned});
    const auto text = textOf(AppPaths::lastReport());
    EXPECT_EQ(text, savedAs({kept}));
    EXPECT_TRUE(text.starts_with(R"({"startedAt":"2023-11-14T22:13:20Z","duration":0,"items":[{"title":)"));
}

TEST_F(AppModelReportTests, aDamagedOneIsNone) {
    const auto whole = savedAs({item("/a")});
    ASSERT_TRUE(isRead(whole));
    for (const auto& text : {std::string(), std::string("{"), std::string("[]"), std::string("null"),
                             std::string("7"), std::string(R"({"items": []})"), std::string("\xff"),
                             std::string(1, '\0'), whole.substr(0, whole.size() / 2), whole + "}",
                             std::string(100'000, '['), R"({"items":)" + std::string(1'000, '[')})
        EXPECT_FALSE(isRead(text)) << text.substr(0, 100);
    EXPECT_TRUE(isRead(whole));
}

TEST_F(AppModelReportTests, aFieldOfAnotherTypeMakesItNone) {
    const auto whole = savedAs({item("/a")});
    const std::pair<std::string, std::string> changes[] = {
        {R"("bytes":1000)", R"("bytes":"1000")"},
        {R"("bytes":1000)", R"("bytes":1000.5)"},
        {R"("bytes":1000)", R"("bytes":1e30)"},
        {R"("bytes":1000)", R"("bytes":18446744073709551615)"},
        {R"("bytes":1000)", R"("bytes":-1)"},
        {R"("bytes":1000)", R"("bytes":null)"},
        {R"("bytes":1000,)", ""},
        {R"("category":"xcode")", R"("category":"Xcode")"},
        {R"("safety":0)", R"("safety":5)"},
        {R"({"delete":{}})", R"({"delete":{},"trash":{}})"},
        {R"({"delete":{}})", R"({})"},
        {R"("recommended":true)", R"("recommended":1)"},
        {R"("startedAt":"2023-11-14T22:13:20Z")", R"("startedAt":1700000000)"},
        {R"("notes":[])", R"("notes":{})"},
    };
    for (const auto& [from, to] : changes) {
        auto text = whole;
        const auto at = text.find(from);
        ASSERT_NE(at, text.npos) << from << " in " << text;
        text.replace(at, from.size(), to);
        EXPECT_FALSE(isRead(text)) << to;
    }
}

TEST_F(AppModelReportTests, sizesThatDoNotAddUpMakeItNone) {
    auto huge = item("/a");
    huge.bytes = std::numeric_limits<std::int64_t>::max();
    EXPECT_TRUE(isRead(savedAs({huge})));
    EXPECT_EQ(model().selectedBytes(), huge.bytes);
    EXPECT_FALSE(isRead(savedAs({huge, item("/b")})));
}

TEST_F(AppModelReportTests, oneThatIsNoFileIsNone) {
    mac.home.folder("Library/Application Support/Korvanti/last-report.json");
    EXPECT_FALSE(model().report().has_value());
    clean({folderItem("Library/Caches/x")});
    EXPECT_TRUE(model().outcomes().at(0).success);
}

TEST_F(AppModelReportTests, aHundredMegabytesAreNone) {
    mac.home.file("Library/Application Support/Korvanti/last-report.json",
                  {.text = savedAs({item("/a")}), .sparseBytes = 100'000'000});
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(model().report().has_value());
    EXPECT_LT(timer.elapsed(), 5'000);
}

TEST_F(AppModelReportTests, aHundredThousandItemsAreReadSearchedAndCleaned) {
    constexpr std::size_t count = 100'000;
    const auto cleaned = folderItem("Library/Caches/x");
    std::array<std::string, 10> kinds;
    for (std::size_t i = 0; i < kinds.size(); ++i)
        kinds[i] = "," + compactJson(toJson(itemLike(i)));
    auto items = compactJson(toJson(cleaned));
    for (std::size_t i = 0; i < count; ++i)
        items += numbered(kinds[i % kinds.size()], i);
    saveText(Text::replaced(savedAs({}), R"("items":[)", R"("items":[)" + items));
    ASSERT_TRUE(model().report().has_value());
    EXPECT_THAT(model().selection(), SizeIs(count + 1));
    EXPECT_THAT(model().selected(), SizeIs(count + 1));
    EXPECT_EQ(model().selectedBytes(), 1'000 * (static_cast<std::int64_t>(count) + 1));

    QElapsedTimer timer;
    timer.start();
    model().setSearch("number 9999");
    EXPECT_THAT(model().filtered(), SizeIs(11));
    RecordProperty("microseconds of a search", static_cast<int>(timer.nsecsElapsed() / 1'000));
    model().setSearch("ÄRGER");
    EXPECT_THAT(model().filtered(), SizeIs(count / 10));
    model().setCategoryFilter(ItemCategory::appCaches);
    EXPECT_THAT(model().filtered(), IsEmpty());

    clean({cleaned});
    EXPECT_THAT(model().report()->items, SizeIs(count));
    EXPECT_FALSE(textOf(AppPaths::lastReport()).contains("Caches\\/x"));
    EXPECT_TRUE(textOf(AppPaths::lastReport()).contains("Number 99999"));
}

TEST_F(AppModelReportTests, theListsWithoutCopiesAreTheSame) {
    std::vector<CleanupItem> items;
    for (std::size_t i = 0; i < 50; ++i)
        items.push_back(numberedItem(i));
    items[3].safety = Safety::keep;
    saveReport(items);
    model().setSearch("1");
    model().toggle(items[5]);
    for (const auto& [copies, pointers] : {std::pair(model().filteredItems(), model().filtered()),
                                           std::pair(model().selectedItems(), model().selected())}) {
        ASSERT_THAT(copies, SizeIs(pointers.size()));
        EXPECT_FALSE(copies.empty());
        for (std::size_t i = 0; i < copies.size(); ++i)
            EXPECT_EQ(copies[i], *pointers[i]);
    }
}

} // namespace
} // namespace korvanti
