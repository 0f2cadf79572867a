#include "UiSupport.h"
#include "support/Environment.h"
#include "support/Mount.h"

#include <QAbstractItemModelTester>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <sys/sysmacros.h>

/// Drives in the sidebar and in the panel: real mounts, in the box as root.
namespace korvanti {
namespace {

using namespace korvanti::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class FrameModelMountTests : public UiTests {
protected:
    void plug(const std::string& folder, const std::string& name) {
        const auto path = volumes.folder(folder);
        plugged.emplace(folder, std::make_unique<Mount>(path, 64 * 1024 * 1024));
        struct stat facts {};
        EXPECT_EQ(::stat(path.c_str(), &facts), 0);
        database.file(fmt::format("b{}:{}", major(facts.st_dev), minor(facts.st_dev)),
                      {.text = "E:ID_FS_LABEL_ENC=" + name + "\nE:ID_FS_UUID=" + folder + "\n"});
        mac.answer(
            "diskutil info -plist " + path,
            "<plist version=\"1.0\"><dict><key>FilesystemType</key><string>apfs</string></dict></plist>");
    }
    [[nodiscard]] bool sees(std::size_t count) {
        return waitFor([&] { return model().volumes().size() == count; });
    }
    [[nodiscard]] std::vector<std::string> column(RowList* rows, const char* role) const {
        std::vector<std::string> values;
        for (const auto& row : rows->rows())
            values.push_back(row.value(role).toString().toStdString());
        return values;
    }
    [[nodiscard]] std::string badge() { return column(frame().panes(), "badge")[4]; }

    const ScopedVariable language{"LC_ALL", "id_ID.UTF-8"};
    const BoxFolder volumes{"/Volumes"};
    const BoxFolder database{"/run/udev/data"};
    std::map<std::string, std::unique_ptr<Mount>> plugged;
};

TEST_F(FrameModelMountTests, theBadgeCountsTheDrivesAndThePanelNamesThem) {
    const QAbstractItemModelTester tester(frame().volumes(),
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    EXPECT_EQ(badge(), "");
    EXPECT_THAT(column(frame().volumes(), "name"), IsEmpty());
    plug("one", "Kerja");
    plug("two", "<b>Arsip</b>");
    desktop.mountsChanged();
    ASSERT_TRUE(sees(2));
    EXPECT_EQ(badge(), "2");
    EXPECT_THAT(column(frame().volumes(), "name"), ElementsAre("Kerja", "<b>Arsip</b>"));
    for (const auto& free : column(frame().volumes(), "free"))
        EXPECT_THAT(free, ::testing::MatchesRegex("[0-9,]+ MB kosong"));
    plugged.erase("one");
    desktop.mountsChanged();
    ASSERT_TRUE(sees(1));
    EXPECT_EQ(badge(), "1");
    EXPECT_THAT(column(frame().volumes(), "name"), ElementsAre("<b>Arsip</b>"));
    plugged.clear();
    desktop.mountsChanged();
    ASSERT_TRUE(sees(0));
    EXPECT_EQ(badge(), "");
}

TEST_F(FrameModelMountTests, aLongNameGivesWayToWhatIsFree) {
    plug("one", std::string(120, 'W'));
    plug("two", "Arsip");
    frame();
    ASSERT_TRUE(sees(2));
    QQmlComponent component(&engine(), QUrl("qrc:/qt/qml/Korvanti/Ui/MenuBarPanel.qml"));
    const std::unique_ptr<QObject> made(
        component.createWithInitialProperties({{"frame", QVariant::fromValue(&frame())}}));
    auto* const panel = qobject_cast<QQuickWindow*>(made.get());
    ASSERT_TRUE(panel) << component.errorString().toStdString();
    panel->show();
    adopt(*panel);
    settle(100);
    grab("panel-volumes.png");
    EXPECT_EQ(unspokenTexts().join(" | ").toStdString(), "");
    EXPECT_TRUE(item("panelVolume0").property("truncated").toBool());
    EXPECT_LT(place("panelVolume0").right(), place("panelVolumeFree0").left());
    EXPECT_LE(place("panelVolumeFree0").right(), place("panel").right() - 16);
    EXPECT_FALSE(item("panelVolumeFree0").property("truncated").toBool());
    EXPECT_FALSE(item("panelVolume1").property("truncated").toBool());
}

} // namespace
} // namespace korvanti
