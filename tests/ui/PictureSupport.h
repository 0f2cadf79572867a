#pragma once

#include "SampleReport.h"
#include "UiSupport.h"
#include "base/Json.h"
#include "scan/ReportJson.h"
#include "support/DiskSpace.h"
#include "support/Environment.h"

#include <QDir>
#include <QImage>
#include <algorithm>
#include <cstddef>
#include <optional>
#include <ostream>
#include <set>
#include <string>

namespace korvanti::testing {

/// How a picture is taken.
struct Look {
    const char* name;
    bool dark;
    QSize size;
    double fontScale = 1;
};

inline void PrintTo(const Look& look, std::ostream* out) {
    *out << look.name;
}

/// What the window looks like, pane by pane, over one sample Mac. Each picture is looked at by the test only
/// as far as a program can, and saved in the folder that KORVANTI_PICTURES names, or else in one for
/// temporary files, for people.
class PictureTests : public UiTests, public ::testing::WithParamInterface<Look> {
protected:
    PictureTests() {
        setDark(GetParam().dark);
        setFontScale(GetParam().fontScale);
        mac.applications.folder("Xcode.app/Contents/Developer");
        mac.answer("xcode-select -p", "/Applications/Xcode.app/Contents/Developer\n");
        mac.answer("pgrep -x Xcode", "501\n");
        mac.answer("pgrep -f GradleDaemon", "502\n");
    }

    void layReport() const {
        mac.home.file("Library/Application Support/Korvanti/last-report.json",
                      {.text = prettySortedJson(toJson(report))});
    }
    /// On a Mac that has been scanned, with the pane given.
    void open(Pane pane) {
        layReport();
        openUnscanned();
        model().setPane(pane);
        settle();
    }
    void openUnscanned() {
        window();
        resize(GetParam().size.width(), GetParam().size.height());
    }
    void take(const std::string& name) {
        settle(600); // whatever moves has come to its end
        const auto picture = grab();
        EXPECT_EQ(picture.size(), GetParam().size) << name;
        EXPECT_GT(coloursOf(picture), 100U) << name << " is as good as blank";
        EXPECT_EQ(unspokenTexts().join(" | ").toStdString(), "") << name << " has texts that can't be heard";
        keep(picture, name);
    }
    static void keep(const QImage& picture, const std::string& name) {
        const auto folder = qEnvironmentVariable("KORVANTI_PICTURES", QDir::tempPath() + "/pictures");
        ASSERT_TRUE(QDir().mkpath(folder));
        ASSERT_TRUE(
            picture.save(folder + "/" + QString::fromStdString(name) + "-" + GetParam().name + ".png"));
    }
    static std::size_t coloursOf(const QImage& picture) {
        std::set<QRgb> colours;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x)
                colours.insert(picture.pixel(x, y));
        }
        return colours.size();
    }

    const ScopedVariable language{"LC_ALL", "id_ID.UTF-8"};
    std::optional<DiskSpace> space{std::in_place, sampleFreeBytes, sampleTotalBytes};
    ScanReport report = sampleReport("/Users/tester", currentInstant());
};

inline const auto eachLook =
    ::testing::Values(Look{"light", false, {1140, 760}}, Look{"dark", true, {1140, 760}},
                      Look{"small-light", false, {960, 620}}, Look{"small-dark", true, {960, 620}},
                      Look{"large-text", false, {1140, 760}, 2});

inline std::string nameOfLook(const ::testing::TestParamInfo<Look>& look) {
    std::string name = look.param.name;
    std::ranges::replace(name, '-', '_');
    return name;
}

} // namespace korvanti::testing
