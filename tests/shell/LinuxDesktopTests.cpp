#include "shell/Desktop.h"

#include "BundleProcess.h"
#include "ShellSupport.h"
#include "fs/PathTools.h"
#include "shell/linux/LoginEntry.h"
#include "support/BoxFolder.h"
#include "support/Environment.h"
#include "support/PrivateBus.h"
#include "support/TempFolder.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QDesktopServices>
#include <QUrl>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// This system's desktop. In the box.
namespace korvanti {
namespace {

using namespace korvanti::testing;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class LinuxDesktopTests : public ::testing::Test {
protected:
    LinuxDesktopTests() { application(); }

    const BoxMac mac;
    const ScopedVariable configuration{"XDG_CONFIG_HOME", std::nullopt};
    std::unique_ptr<Desktop> desktop = systemDesktop(mac.home.path());
};

// Recycling

class RecyclingTests : public LinuxDesktopTests {
protected:
    std::optional<Desktop::Result> recycled(const std::string& path) {
        std::optional<Desktop::Result> answer;
        desktop->recycle(path, [&](const Desktop::Result& result) { answer = result; });
        EXPECT_FALSE(answer.has_value()) << "too early";
        EXPECT_TRUE(waitFor([&] { return answer.has_value(); }));
        return answer;
    }
};

TEST_F(RecyclingTests, anApplicationGoesToTheTrash) {
    mac.installApplication("Tool", "org.example.tool");
    EXPECT_TRUE(recycled("/Applications/Tool.app")->has_value());
    EXPECT_FALSE(std::filesystem::exists("/Applications/Tool.app"));
    EXPECT_TRUE(std::filesystem::exists(mac.home.path(".Trash/Tool.app/Contents/Info.plist")));
}

TEST_F(RecyclingTests, theGuardIsAsked) {
    mac.installApplication("Tool", "com.apple.tool");
    const auto refused = recycled("/Applications/Tool.app");
    ASSERT_FALSE(refused->has_value());
    EXPECT_EQ(refused->error(), "Dilindungi (data penting): /Applications/Tool.app");
    const auto file = mac.home.file("Documents/letter");
    EXPECT_FALSE(recycled(mac.home.path("Documents"))->has_value());
    EXPECT_TRUE(std::filesystem::exists("/Applications/Tool.app"));
    EXPECT_TRUE(std::filesystem::exists(file));
}

TEST_F(RecyclingTests, aTrashThatTakesNothingSaysWhy) {
    mac.installApplication("Tool", "org.example.tool");
    mac.home.file(".Trash", {.text = "no folder"});
    const auto refused = recycled("/Applications/Tool.app");
    ASSERT_FALSE(refused->has_value());
    EXPECT_EQ(refused->error(), "Gagal pada /Applications/Tool.app: bukan folder");
    EXPECT_TRUE(std::filesystem::exists("/Applications/Tool.app"));
}

TEST_F(RecyclingTests, aDesktopThatIsGoneAnswersNobody) {
    bool answered = false;
    desktop->recycle(mac.home.path("Library/Caches/none"), [&](const Desktop::Result&) { answered = true; });
    desktop.reset();
    spinFor(std::chrono::milliseconds(50));
    EXPECT_FALSE(answered);
}

// Applications that are open

class OpenApplicationTests : public LinuxDesktopTests {
protected:
    [[nodiscard]] static InstalledApp app(const std::string& path) {
        InstalledApp app;
        app.path = path;
        return app;
    }
    static constexpr auto program = "/Applications/Tool.app/Contents/MacOS/tool";
};

TEST_F(OpenApplicationTests, oneWhoseProgramRunsIsOpen) {
    mac.installApplication("Tool", "org.example.tool");
    EXPECT_FALSE(desktop->isRunning(app("/Applications/Tool.app")));
    BundleProcess process(program);
    EXPECT_TRUE(desktop->isRunning(app("/Applications/Tool.app")));
    EXPECT_FALSE(process.signalThatEndedIt().has_value()) << "looking does nothing to it";
}

TEST_F(OpenApplicationTests, itIsAskedToEnd) {
    BundleProcess process(program);
    desktop->askToEnd(app("/Applications/Tool.app"));
    ASSERT_TRUE(waitFor([&] { return process.signalThatEndedIt().has_value(); }));
    EXPECT_EQ(process.signalThatEndedIt(), SIGTERM);
    EXPECT_FALSE(desktop->isRunning(app("/Applications/Tool.app")));
}

TEST_F(OpenApplicationTests, onlyTheFirstOfItsProcessesIsAskedToEnd) {
    BundleProcess first(program);
    BundleProcess second("/Applications/Tool.app/Contents/Helpers/helper");
    desktop->askToEnd(app("/Applications/Tool.app"));
    ASSERT_TRUE(waitFor([&] { return first.signalThatEndedIt() || second.signalThatEndedIt(); }));
    spinFor(std::chrono::milliseconds(50));
    EXPECT_NE(first.signalThatEndedIt().has_value(), second.signalThatEndedIt().has_value());
}

TEST_F(OpenApplicationTests, whatRunsElsewhereIsLeftAlone) {
    BundleProcess beside("/Applications/Tool.app.copy/tool");
    BundleProcess longer("/Applications/Tool.application/tool");
    mac.installApplication("Tool", "org.example.tool");
    std::filesystem::create_symlink("/Applications/Tool.app.copy/tool", "/Applications/Tool.app/tool");
    for (const auto* path : {"/Applications/Tool.app", "/Applications", "/", "", ".", "Tool.app",
                             "/Applications/Tool.app.copy", "/Applications/None.app", "/proc"}) {
        EXPECT_FALSE(desktop->isRunning(app(path))) << path;
        desktop->askToEnd(app(path));
    }
    spinFor(std::chrono::milliseconds(50));
    EXPECT_FALSE(beside.signalThatEndedIt().has_value());
    EXPECT_FALSE(longer.signalThatEndedIt().has_value());
}

TEST_F(OpenApplicationTests, aBundleIsKnownByItsBytesAndThroughLinks) {
    const std::string odd = "/Applications/odd\xff\n .app";
    BundleProcess process(odd + "/Contents/MacOS/odd");
    EXPECT_TRUE(desktop->isRunning(app(odd)));
    EXPECT_FALSE(desktop->isRunning(app("/Applications/odd\xef\xbf\xbd\n .app")));
    std::filesystem::create_directory_symlink("/Applications", mac.home.path("linked"));
    EXPECT_TRUE(desktop->isRunning(app(mac.home.path("linked/odd\xff\n .app"))));
}

TEST_F(OpenApplicationTests, thereAreNoIcons) {
    mac.installApplication("Tool", "org.example.tool");
    EXPECT_EQ(desktop->icon("/Applications/Tool.app", 28), "");
}

// Starting with the session

class LoginItemTests : public LinuxDesktopTests {
protected:
    const std::string entry = mac.home.path(".config/autostart/korvanti.desktop");
};

TEST_F(LoginItemTests, thereIsNoneAtFirst) {
    EXPECT_FALSE(desktop->isLoginItem());
    EXPECT_FALSE(std::filesystem::exists(mac.home.path(".config")));
}

TEST_F(LoginItemTests, itStartsThisProgramOrNoLonger) {
    EXPECT_TRUE(desktop->setLoginItem(true).has_value());
    EXPECT_TRUE(desktop->isLoginItem());
    EXPECT_EQ(textOf(entry),
              LoginEntry::text(std::filesystem::read_symlink("/proc/self/exe").string(), true));
    EXPECT_TRUE(desktop->setLoginItem(false).has_value());
    EXPECT_FALSE(desktop->isLoginItem());
    EXPECT_EQ(PathTools::children(mac.home.path(".config/autostart")), std::vector{entry});
}

TEST_F(LoginItemTests, itLiesWhereTheUserHasTheConfiguration) {
    const ScopedVariable elsewhere("XDG_CONFIG_HOME", mac.home.path("elsewhere"));
    EXPECT_TRUE(desktop->setLoginItem(true).has_value());
    EXPECT_TRUE(desktop->isLoginItem());
    EXPECT_TRUE(std::filesystem::exists(mac.home.path("elsewhere/autostart/korvanti.desktop")));
}

TEST_F(LoginItemTests, aPlaceThatIsNotAbsoluteCountsAsNone) {
    const ScopedVariable relative("XDG_CONFIG_HOME", "relative");
    EXPECT_TRUE(desktop->setLoginItem(true).has_value());
    EXPECT_TRUE(std::filesystem::exists(entry));
}

TEST_F(LoginItemTests, whatStandsInTheWayIsTold) {
    mac.home.file(".config", {.text = "no folder"});
    const auto refused = desktop->setLoginItem(true);
    ASSERT_FALSE(refused.has_value());
    EXPECT_EQ(refused.error(), "Gagal pada /Users/tester/.config/autostart: bukan folder");
    EXPECT_FALSE(desktop->isLoginItem());
}

TEST_F(LoginItemTests, aFolderThatTakesNoFileIsTold) {
    mac.home.folder(".config/autostart");
    mac.home.setMode(".config/autostart", 0555);
    const auto refused = desktop->setLoginItem(true);
    mac.home.setMode(".config/autostart", 0755);
    ASSERT_FALSE(refused.has_value());
    EXPECT_EQ(refused.error(), "Gagal pada " + entry + ": tidak ada izin");
}

// Showing something

/// A file manager on a bus of the test's own, and whoever opens what has no file manager.
class FileManager : public QDBusVirtualObject {
public:
    [[nodiscard]] QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        calls.push_back(message.interface() + "." + message.member());
        uris = message.arguments().value(0).toStringList();
        connection.send(fails ? message.createErrorReply("org.example.No", "no") : message.createReply());
        return true;
    }

    std::vector<QString> calls;
    QStringList uris;
    bool fails = false;
};

class Opener : public QObject {
    Q_OBJECT

public slots:
    void open(const QUrl& url) { urls.push_back(url.toEncoded()); }

public:
    std::vector<QByteArray> urls;
};

class ShowingTests : public LinuxDesktopTests {
protected:
    static void SetUpTestSuite() { bus.emplace(); }
    static void TearDownTestSuite() { bus.reset(); }

    ShowingTests() { QDesktopServices::setUrlHandler("file", &opener, "open"); }
    ~ShowingTests() override {
        QDesktopServices::unsetUrlHandler("file");
        QDBusConnection::disconnectFromBus("fileManager");
    }
    void startFileManager() {
        auto connection =
            QDBusConnection::connectToBus(QString::fromStdString(bus->address()), "fileManager");
        EXPECT_TRUE(connection.registerVirtualObject("/org/freedesktop/FileManager1", &manager));
        EXPECT_TRUE(connection.registerService("org.freedesktop.FileManager1"));
    }

    static inline std::optional<PrivateBus> bus;
    std::vector<Desktop::Result> answers;
    Desktop::Answer answer = [this](const Desktop::Result& result) { answers.push_back(result); };
    FileManager manager;
    Opener opener;
};

TEST_F(ShowingTests, aFolderIsOpened) {
    desktop->openFolder("/Users/tester/a b#?%\xFF", answer);
    EXPECT_THAT(opener.urls, ElementsAre("file:///Users/tester/a%20b%23%3F%25%FF"));
}

TEST_F(ShowingTests, theFileManagerShowsTheThingItself) {
    startFileManager();
    desktop->reveal("/Users/tester/a b/\xFF#", answer);
    ASSERT_TRUE(waitFor([&] { return !manager.calls.empty(); }));
    EXPECT_THAT(manager.calls, ElementsAre("org.freedesktop.FileManager1.ShowItems"));
    EXPECT_EQ(manager.uris, QStringList("file:///Users/tester/a%20b/%FF%23"));
    spinFor(std::chrono::milliseconds(50));
    EXPECT_THAT(opener.urls, IsEmpty());
}

TEST_F(ShowingTests, whatWasOpenedIsAnsweredOnce) {
    desktop->openFolder("/Users/tester", answer);
    EXPECT_THAT(answers, ElementsAre(Desktop::Result()));
    startFileManager();
    desktop->reveal("/Users/tester/a", answer);
    ASSERT_TRUE(waitFor([&] { return answers.size() == 2; }));
    manager.fails = true;
    desktop->reveal("/Users/tester/a", answer);
    ASSERT_TRUE(waitFor([&] { return answers.size() == 3; }));
    EXPECT_THAT(answers, Each(Desktop::Result()));
}

TEST_F(ShowingTests, whereNothingOpensAFolderTheFailureIsAnsweredOnce) {
    QDesktopServices::unsetUrlHandler("file");
    const ScopedVariable nothing("PATH", "/nowhere"); // no xdg-open either
    const Desktop::Result failed = std::unexpected("tidak ada pengelola file yang menjawab.");
    desktop->openFolder("/Users/tester", answer);
    EXPECT_THAT(answers, ElementsAre(failed));
    desktop->reveal("/Users/tester/a", answer);
    ASSERT_TRUE(waitFor([&] { return answers.size() == 2; }));
    desktop->openFullDiskAccessSettings(answer);
    ASSERT_TRUE(waitFor([&] { return answers.size() == 3; }));
    EXPECT_THAT(answers, Each(failed));
}

TEST_F(ShowingTests, whereItFailsTheFolderIsOpened) {
    startFileManager();
    manager.fails = true;
    desktop->reveal("/Users/tester/a/b", answer);
    ASSERT_TRUE(waitFor([&] { return !opener.urls.empty(); }));
    EXPECT_THAT(opener.urls, ElementsAre("file:///Users/tester/a"));
    EXPECT_THAT(manager.calls, SizeIs(1));
}

TEST_F(ShowingTests, thisProgramIsShownForTheSettings) {
    startFileManager();
    desktop->openFullDiskAccessSettings(answer);
    ASSERT_TRUE(waitFor([&] { return !manager.calls.empty(); }));
    EXPECT_EQ(manager.uris, QStringList("file://" + QString::fromStdString(
                                                        std::filesystem::read_symlink("/proc/self/exe"))));
}

TEST_F(ShowingTests, aDesktopThatIsGoneOpensNothing) {
    startFileManager();
    manager.fails = true;
    desktop->reveal("/Users/tester/a/b", answer);
    desktop.reset();
    ASSERT_TRUE(waitFor([&] { return !manager.calls.empty(); }));
    spinFor(std::chrono::milliseconds(50));
    EXPECT_THAT(opener.urls, IsEmpty());
}

TEST_F(ShowingTests, withoutAFileManagerTheFolderIsOpened) {
    desktop->reveal("/Users/tester/a/b", answer);
    EXPECT_THAT(opener.urls, IsEmpty());
    ASSERT_TRUE(waitFor([&] { return !opener.urls.empty(); }));
    EXPECT_THAT(opener.urls, ElementsAre("file:///Users/tester/a"));
}

TEST_F(ShowingTests, withoutABusTheFolderIsOpened) {
    bus->stop();
    spinFor(std::chrono::milliseconds(50));
    desktop->reveal("/Users/tester/a/b", answer);
    ASSERT_TRUE(waitFor([&] { return !opener.urls.empty(); }));
    EXPECT_THAT(opener.urls, ElementsAre("file:///Users/tester/a"));
}

} // namespace
} // namespace korvanti

#include "LinuxDesktopTests.moc"
