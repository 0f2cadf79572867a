#include "ui/MotionWatch.h"

#include "ShellSupport.h"
#include "support/PrivateBus.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QVariant>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

/// Against a desktop's portal on a bus of the test's own.
namespace korvanti {
namespace {

using namespace korvanti::testing;
using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Tells its one setting as the portal's older call does, wrapped twice.
class Portal : public QDBusVirtualObject {
public:
    [[nodiscard]] QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        asked.push_back(message.member() + " " + message.arguments().value(0).toString() + " " +
                        message.arguments().value(1).toString());
        const auto value = QVariant::fromValue(QDBusVariant(QVariant::fromValue(QDBusVariant(setting))));
        connection.send(fails ? message.createErrorReply("org.example.No", "no")
                              : message.createReply(value));
        return true;
    }

    std::vector<QString> asked;
    QVariant setting = true;
    bool fails = false;
};

class MotionWatchTests : public ::testing::Test {
protected:
    static void SetUpTestSuite() { bus.emplace(); }
    static void TearDownTestSuite() { bus.reset(); }

    MotionWatchTests() { application(); }
    ~MotionWatchTests() override { QDBusConnection::disconnectFromBus("portal"); }

    void startPortal() {
        auto connection = QDBusConnection::connectToBus(QString::fromStdString(bus->address()), "portal");
        EXPECT_TRUE(connection.registerVirtualObject("/org/freedesktop/portal/desktop", &portal));
        EXPECT_TRUE(connection.registerService("org.freedesktop.portal.Desktop"));
    }
    static void tellChange(const QString& group, const QString& key, const QVariant& value) {
        auto change = QDBusMessage::createSignal("/org/freedesktop/portal/desktop",
                                                 "org.freedesktop.portal.Settings", "SettingChanged");
        change << group << key << QVariant::fromValue(QDBusVariant(value));
        QDBusConnection("portal").send(change);
    }
    void watch() {
        watcher = watchMotion([this](bool reduced) { told.push_back(reduced); });
    }

    static inline std::optional<PrivateBus> bus;
    Portal portal;
    std::vector<bool> told;
    std::unique_ptr<MotionWatch> watcher;
};

TEST_F(MotionWatchTests, whoTurnsAnimationsOffWantsLessMotion) {
    portal.setting = false;
    startPortal();
    watch();
    EXPECT_THAT(told, IsEmpty()) << "it does not wait";
    ASSERT_TRUE(waitFor([&] { return !told.empty(); }));
    EXPECT_THAT(told, ElementsAre(true));
    EXPECT_THAT(portal.asked, ElementsAre("Read org.gnome.desktop.interface enable-animations"));
}

TEST_F(MotionWatchTests, itFollowsTheSetting) {
    startPortal();
    watch();
    ASSERT_TRUE(waitFor([&] { return told.size() == 1; }));
    EXPECT_THAT(told, ElementsAre(false));
    tellChange("org.gnome.desktop.interface", "gtk-theme", "Adwaita");
    tellChange("org.example", "enable-animations", false);
    tellChange("org.gnome.desktop.interface", "enable-animations", false);
    ASSERT_TRUE(waitFor([&] { return told.size() == 2; }));
    EXPECT_THAT(told, ElementsAre(false, true));
}

TEST_F(MotionWatchTests, anAnswerOfAnotherKindIsNone) {
    portal.setting = "yes";
    startPortal();
    watch();
    ASSERT_TRUE(waitFor([&] { return !portal.asked.empty(); }));
    spinFor(50ms);
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(MotionWatchTests, withoutAnAnswerNothingIsTold) {
    portal.fails = true;
    startPortal();
    watch();
    ASSERT_TRUE(waitFor([&] { return !portal.asked.empty(); }));
    spinFor(50ms);
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(MotionWatchTests, withoutAPortalNothingIsTold) {
    watch();
    spinFor(100ms);
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(MotionWatchTests, aWatchThatIsGoneTellsNothing) {
    startPortal();
    watch();
    watcher.reset();
    ASSERT_TRUE(waitFor([&] { return !portal.asked.empty(); }));
    spinFor(50ms);
    EXPECT_THAT(told, IsEmpty());
}

} // namespace
} // namespace korvanti
