#include "window/CommandMenu.h"

#include "ShellSupport.h"
#include "support/BoxFolder.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QSignalSpy>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>

namespace korvanti {
namespace {

using namespace korvanti::testing;

QApplication& widgetApplication() {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static int count = 1;
    static char name[] = "tests";
    static char* arguments[] = {name, nullptr};
    static auto* const application =
        new QApplication(count, arguments); // never taken down, as in the window's tests
    return *application;
}

class CommandMenuTests : public ::testing::Test {
protected:
    [[nodiscard]] QAction& command(const QString& title) const {
        for (const auto* menu : menu_.bar().actions()) {
            for (auto* action : menu->menu()->actions()) {
                if (action->text() == title)
                    return *action;
            }
        }
        throw std::runtime_error("no such command: " + title.toStdString());
    }

    QApplication& application_ = widgetApplication();
    BoxMac mac_;
    ScriptedDesktop::Script desktop_;
    AppModel model_{std::make_unique<ScriptedDesktop>(desktop_)};
    FrameModel frame_{model_};
    const CommandMenu menu_{frame_};
};

TEST_F(CommandMenuTests, scansAgainUnlessAScanIsUnderWay) {
    auto& scan = command("Pindai Ulang");
    EXPECT_EQ(scan.shortcut(), QKeySequence("Ctrl+R"));
    ASSERT_TRUE(scan.isEnabled());
    scan.trigger();
    EXPECT_TRUE(model_.isScanning());
    EXPECT_FALSE(scan.isEnabled());
    ASSERT_TRUE(waitFor([&] { return !model_.isScanning(); }));
    EXPECT_TRUE(scan.isEnabled());
}

TEST_F(CommandMenuTests, opensTheSettingsWhereTheSystemPutsThem) {
    auto& settings = command("Pengaturan…");
    EXPECT_EQ(settings.menuRole(), QAction::PreferencesRole);
    QSignalSpy requested(&frame_, &FrameModel::settingsRequested);
    settings.trigger();
    EXPECT_EQ(requested.count(), 1);
}

} // namespace
} // namespace korvanti
