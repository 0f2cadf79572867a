#include "EndToEnd.h"
#include "support/Mount.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <optional>

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

} // namespace
} // namespace korvanti::testing
