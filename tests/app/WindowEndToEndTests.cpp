#include "EndToEnd.h"
#include "Screen.h"
#include "settings/AppPaths.h"

#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <utility>

namespace korvanti::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

// Colours that the window has nowhere else, see Brand.qml.
constexpr std::uint32_t heroFill = 0x08375F;
constexpr std::uint32_t white = 0xFFFFFF;
constexpr std::uint32_t danger = 0xC2412D;
constexpr int shortestButton = 60; // pixels

class WindowEndToEnd : public EndToEnd {
protected:
    /// The program as the user starts it: without arguments.
    [[nodiscard]] BackgroundProgram start() const {
        auto environment = screen.environment();
        environment.insert({{"HOME", "/Users/tester"}, {"LC_ALL", "C.UTF-8"}, {"TZ", "UTC"}});
        return {{KORVANTI_EXECUTABLE}, environment};
    }

    /// The window has scanned, which it does on its own without a report, and stands still.
    [[nodiscard]] bool hasScanned() const {
        return Screen::waitUntil([] { return std::filesystem::exists(AppPaths::lastReport()); }) &&
               screen.waitForRow(white, shortestButton, heroFill);
    }
    /// Clicks the button on the recommendation until the sheet asks: what moves on a busy machine may slip
    /// away from a click.
    [[nodiscard]] bool asksAfterAClick() const {
        return Screen::waitUntil([&] {
            const auto shown = screen.stillPicture();
            if (const auto clean = shown.findRow(white, shortestButton, heroFill))
                screen.click(*clean);
            return shown.findRow(danger, shortestButton).has_value();
        });
    }

    const Screen screen{1280, 900};
};

TEST_F(WindowEndToEnd, theRecommendationIsCleanedByMouseAndKeyboard) {
    occupy("Library/Developer/Xcode/DerivedData", 300'000'000);
    occupy("Library/Developer/CoreSimulator/Caches", 200'000'000);
    const auto kept = mac.home.file("Documents/letter.txt", {.text = "dear"});

    auto program = start();
    ASSERT_TRUE(hasScanned()) << "no button on the recommendation";
    const auto before = screen.stillPicture();
    ASSERT_TRUE(asksAfterAClick()) << "nothing asks before it cleans";
    const auto confirm = screen.stillPicture().findRow(danger, shortestButton);
    ASSERT_TRUE(confirm);
    EXPECT_TRUE(std::filesystem::exists(mac.home.path("Library/Developer/CoreSimulator/Caches")));
    screen.click(*confirm);

    EXPECT_TRUE(Screen::waitUntil([&] {
        return !std::filesystem::exists(mac.home.path("Library/Developer/CoreSimulator/Caches/contents")) &&
               !std::filesystem::exists(mac.home.path("Library/Developer/Xcode/DerivedData/contents"));
    }));
    ASSERT_TRUE(Screen::waitUntil([] { return std::filesystem::exists(AppPaths::activity()); }));
    static_cast<void>(screen.stillPicture());
    screen.press("Return"); // closes the result
    ASSERT_TRUE(screen.waitForRow(heroFill, shortestButton));
    const auto after = screen.stillPicture();
    EXPECT_NE(after, before) << "the window shows what it showed before";
    EXPECT_FALSE(after.findRow(danger, shortestButton));

    EXPECT_THAT(textOf(AppPaths::activity()), HasSubstr("DerivedData"));
    EXPECT_THAT(textOf(AppPaths::activity()), HasSubstr("\"success\":true"));
    EXPECT_THAT(textOf(AppPaths::lastReport()), Not(HasSubstr("CoreSimulator/Caches")));
    EXPECT_EQ(textOf(kept), "dear");
    EXPECT_EQ(program.ended(), std::nullopt);
}

TEST_F(WindowEndToEnd, theSheetIsCancelledByTheKeyboard) {
    occupy("Library/Developer/CoreSimulator/Caches", 200'000'000);
    auto program = start();
    ASSERT_TRUE(hasScanned());
    ASSERT_TRUE(asksAfterAClick());
    screen.press("Escape");
    EXPECT_TRUE(Screen::waitUntil([&] { return !screen.picture().findRow(danger, shortestButton); }));
    EXPECT_TRUE(std::filesystem::exists(mac.home.path("Library/Developer/CoreSimulator/Caches/contents")));
    EXPECT_FALSE(std::filesystem::exists(AppPaths::activity()));
    EXPECT_EQ(program.ended(), std::nullopt);
}

TEST_F(WindowEndToEnd, aUserHasOneProgramRunningWhoeverCrashed) {
    occupy("Library/Developer/CoreSimulator/Caches", 200'000'000);
    auto first = start();
    ASSERT_TRUE(hasScanned());
    auto second = start();
    EXPECT_TRUE(Screen::waitUntil([&] { return second.ended().has_value(); }));
    EXPECT_EQ(second.ended(), 0);
    EXPECT_EQ(first.ended(), std::nullopt);

    first.signal(SIGKILL);
    ASSERT_TRUE(Screen::waitUntil([&] { return first.ended().has_value(); }));
    ASSERT_TRUE(
        Screen::waitUntil([&] { return !screen.picture().findRow(white, shortestButton, heroFill); }));
    auto third = start();
    EXPECT_TRUE(screen.waitForRow(white, shortestButton, heroFill)) << "no window after a crash";
    EXPECT_EQ(third.ended(), std::nullopt);
}

TEST_F(WindowEndToEnd, withoutADisplayItSaysSoAndTheReportStillWorks) {
    const auto result =
        runProgram({KORVANTI_EXECUTABLE}, {.environment = {{"DISPLAY", std::nullopt},
                                                           {"WAYLAND_DISPLAY", std::nullopt},
                                                           {"QT_QPA_PLATFORM", std::nullopt}}});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.err, "");
    EXPECT_NE(korvanti({"--report"}).out, "");
}

} // namespace
} // namespace korvanti::testing
