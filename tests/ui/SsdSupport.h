#pragma once

#include "UiSupport.h"
#include "base/Json.h"
#include "drives/OffloadRecord.h"
#include "settings/AppPaths.h"
#include "support/Environment.h"
#include "support/Mount.h"

#include <QTest>
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <utility>
#include <vector>

namespace korvanti::testing {

/// Drives that come and go, as real mounts. In the box as root.
class BoxDrives {
public:
    explicit BoxDrives(const BoxMac& mac) : mac_(mac) {}

    struct Drive {
        std::optional<std::string> uuid;
        std::string fsType = "apfs";
        std::string formatName = "APFS";
        std::string facts = "<key>BusProtocol</key><string>USB</string>"; ///< what else diskutil tells
    };
    /// From now on until `unplug`. Gives where it is mounted.
    std::string plug(const std::string& name, const Drive& drive) {
        auto path = volumes_.folder(name);
        plugged_.emplace(name, std::make_unique<Mount>(path, 2'000'000'000));
        struct stat facts {};
        EXPECT_EQ(::stat(path.c_str(), &facts), 0);
        if (drive.uuid)
            database_.file(fmt::format("b{}:{}", major(facts.st_dev), minor(facts.st_dev)),
                           {.text = "E:ID_FS_LABEL_ENC=" + name + "\nE:ID_FS_UUID=" + *drive.uuid + "\n"});
        mac_.answer("diskutil info -plist " + path,
                    "<plist version=\"1.0\"><dict><key>FilesystemType</key><string>" + drive.fsType +
                        "</string><key>FilesystemUserVisibleName</key><string>" + drive.formatName +
                        "</string>" + drive.facts + "</dict></plist>");
        return path;
    }
    /// The mount and its folder go, as they do on a Mac.
    void unplug(const std::string& name) {
        plugged_.erase(name);
        std::filesystem::remove(volumes_.path(name));
    }

private:
    const BoxMac& mac_;
    BoxFolder volumes_{"/Volumes"};
    BoxFolder database_{"/run/udev/data"};
    std::map<std::string, std::unique_ptr<Mount>> plugged_;
};

/// Something that was moved to a drive three days ago.
inline OffloadRecord movedRecord(const std::string& title, const std::string& destination) {
    OffloadRecord made;
    made.title = title;
    made.originalPath = "/Users/tester/things/" + title;
    made.destinationPath = destination;
    made.volumeName = "Kerja";
    made.bytes = 9'640'000'000;
    made.date = currentInstant() - std::chrono::hours(72);
    made.symlinked = true;
    return made;
}

/// What the model finds at its start.
inline void saveRecords(const BoxMac& mac, const std::vector<OffloadRecord>& records) {
    mac.home.folder("Library/Application Support/Korvanti");
    OffloadRecords::write(AppPaths::offloads(), records);
}

/// The pane over drives, and over what was moved to them.
class SsdFixture : public UiTests {
protected:
    SsdFixture() { std::filesystem::remove("/box/ditto"); }
    ~SsdFixture() override { std::filesystem::remove("/box/ditto"); }

    std::string plug(const std::string& name, const BoxDrives::Drive& drive) {
        return drives.plug(name, drive);
    }
    void unplug(const std::string& name) { drives.unplug(name); }
    static OffloadRecord record(const std::string& title, const std::string& destination) {
        return movedRecord(title, destination);
    }
    void saveRecords(const std::vector<OffloadRecord>& records) const { testing::saveRecords(mac, records); }
    /// Has the model look again, until it sees so many.
    [[nodiscard]] bool sees(std::size_t count) {
        model().refreshVolumes();
        return waitFor([&] { return model().volumes().size() == count; });
    }
    /// The same for one volume of that size.
    [[nodiscard]] bool seesSize(std::int64_t free, std::int64_t total) {
        model().refreshVolumes();
        return waitFor([&] {
            return model().volumes().size() == 1 && model().volumes()[0].free == free &&
                   model().volumes()[0].total == total;
        });
    }
    void chooseWorkVolume(const std::string& uuid) {
        auto settings = model().settings();
        settings.workVolumeUUID = uuid;
        model().setSettings(settings);
    }
    [[nodiscard]] bool isIdle() {
        return waitFor([&] { return !model().busyMessage().has_value(); });
    }

    /// The pane in the window.
    void open(QSize size = {1140, 760}) {
        model().setPane(Pane::ssd);
        window();
        resize(size.width(), size.height());
        settle();
    }
    /// A folder that can be moved, in the list of the cleanup pane with its menu open, and a drive to move it
    /// to.
    void openMenuOfArchives() {
        mac.home.file("Library/Developer/Xcode/Archives/One/file", {.text = "12345"});
        CleanupItem archives;
        archives.title = "Arsip";
        archives.path = archivesPath;
        archives.bytes = 5;
        archives.category = ItemCategory::xcode;
        archives.safety = Safety::review;
        archives.action = CleanupAction::trash();
        archives.offloadable = true;
        saveReport({archives});
        plug("Kerja", {.uuid = "aa-1"});
        model().setFilter(ItemFilter::all);
        ASSERT_TRUE(sees(1));
        model().setPane(Pane::cleanup);
        window();
        resize(1140, 900);
        QTest::mouseClick(&window(), Qt::RightButton, Qt::NoModifier,
                          place("row:" + QString(archivesPath)).center().toPoint());
        settle(150);
    }
    /// An item by its name below another one.
    QQuickItem* findIn(const QString& above, const QString& name) {
        auto* const below = find(above);
        return below ? findBelow(below, name) : nullptr;
    }
    QQuickItem& itemIn(const QString& above, const QString& name) {
        auto* const found = findIn(above, name);
        if (!found)
            throw std::runtime_error("nothing in " + above.toStdString() + " is named " + name.toStdString());
        return *found;
    }
    QString textIn(const QString& above, const QString& name) {
        return itemIn(above, name).property("text").toString();
    }
    [[nodiscard]] static QRectF placeOf(const QQuickItem& item) {
        return item.mapRectToScene(QRectF(0, 0, item.width(), item.height()));
    }
    /// Scrolls until the item stands in the middle.
    void bring(const QQuickItem& shown) {
        auto& pane = item("ssdScroll");
        const auto middle = placeOf(pane).center().y();
        const auto most = pane.property("contentHeight").toDouble() - pane.height();
        const auto y = pane.property("contentY").toDouble() + placeOf(shown).center().y() - middle;
        pane.setProperty("contentY", std::max(0.0, std::min(y, most)));
        settle(20);
    }
    void clickIn(const QString& above, const QString& name) {
        auto& clicked = itemIn(above, name);
        bring(clicked);
        QTest::mouseClick(&window(), Qt::LeftButton, Qt::NoModifier, placeOf(clicked).center().toPoint());
        settle(20);
    }
    bool isEnabledIn(const QString& above, const QString& name) { return itemIn(above, name).isEnabled(); }

    static constexpr auto archivesPath = "/Users/tester/Library/Developer/Xcode/Archives";
    const ScopedVariable language{"LC_ALL", "id_ID.UTF-8"};
    BoxDrives drives{mac};

private:
    static QQuickItem* findBelow(QQuickItem* above, const QString& name) {
        if (!above->isVisible())
            return nullptr;
        if (above->objectName() == name)
            return above;
        for (auto* child : above->childItems())
            if (auto* const found = findBelow(child, name))
                return found;
        return nullptr;
    }
};

} // namespace korvanti::testing
