#include "SsdSupport.h"
#include "support/DiskSpace.h"

#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>
#include <algorithm>
#include <array>
#include <functional>
#include <gmock/gmock.h>
#include <limits>

namespace korvanti {
namespace {

using namespace korvanti::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SSDViewTests : public SsdFixture {
protected:
    /// Two drives, the one with a UUID for work.
    void openWithDrives(QSize size = {1140, 760}) {
        plug("Kerja", {.uuid = "aa-1",
                       .facts = "<key>GlobalPermissionsEnabled</key><false/><key>BusProtocol</key>"
                                "<string>USB</string>"});
        plug("Foto", {.fsType = "exfat", .formatName = "ExFAT"});
        chooseWorkVolume("aa-1");
        ASSERT_TRUE(sees(2));
        open(size);
        work = textIn("volume0", "name") == "Kerja" ? "volume0" : "volume1";
        other = work == "volume0" ? "volume1" : "volume0";
    }
    /// One record that can come back and one whose drive is away.
    void openWithRecords(QSize size = {1140, 760}) {
        const auto path = plug("Kerja", {.uuid = "aa-1"});
        std::filesystem::create_directories(path + "/Korvanti Offload/a");
        saveRecords(
            {record("a", path + "/Korvanti Offload/a"), record("b", "/Volumes/Lain/Korvanti Offload/b")});
        ASSERT_TRUE(sees(1));
        open(size);
    }
    void openMenu(const QString& record) {
        clickIn(record, "movedActions");
        settle(150);
    }
    bool hasFocusIn(const QString& above, const QString& name) {
        auto* const found = findIn(above, name);
        return found != nullptr && found->hasActiveFocus();
    }
    /// Nothing that says or does something lies over another or beyond its card.
    void expectOrder(QQuickItem& below) {
        std::vector<QQuickItem*> leaves;
        collect(&below, leaves);
        const auto room = placeOf(item("ssdScroll"));
        for (std::size_t one = 0; one < leaves.size(); ++one) {
            const auto place = placeOf(*leaves[one]);
            EXPECT_GE(place.left(), room.left() + 24) << nameOf(*leaves[one]);
            EXPECT_LE(place.right(), room.right() - 24) << nameOf(*leaves[one]);
            for (std::size_t two = one + 1; two < leaves.size(); ++two)
                EXPECT_FALSE(place.intersects(placeOf(*leaves[two])))
                    << nameOf(*leaves[one]) << " and " << nameOf(*leaves[two]);
        }
    }

    QString work;
    QString other;

private:
    static std::string nameOf(const QQuickItem& shown) {
        return shown.objectName().toStdString() + " '" + shown.property("text").toString().toStdString() +
               "'";
    }
    static void collect(QQuickItem* shown, std::vector<QQuickItem*>& leaves) {
        if (!shown->isVisible())
            return;
        const bool isControl = shown->inherits("QQuickAbstractButton");
        if (isControl || (shown->inherits("QQuickText") && !shown->property("text").toString().isEmpty())) {
            leaves.push_back(shown);
            return;
        }
        for (auto* child : shown->childItems())
            collect(child, leaves);
    }
};

// Without volumes

TEST_F(SSDViewTests, withoutADriveThePaneSaysHowItGoesOn) {
    ASSERT_TRUE(sees(0));
    open();
    const auto shown = texts(&item("ssdScroll"));
    for (const auto* text :
         {"Belum ada SSD eksternal yang terpasang",
          "Colokkan SSD; Korvanti otomatis mendeteksinya, memeriksa format & kecepatannya, lalu bisa "
          "memindahkan arsip dan cache dev ke sana.",
          "Cache dev langsung ke SSD",
          "Build berikutnya menulis cache ke SSD kerja, bukan ke disk internal. Jika SSD dicabut, Gradle & "
          "npm otomatis kembali ke lokasi bawaan; Xcode akan meminta SSD dipasang (atau kembalikan di "
          "sini).",
          "Data yang dipindah ke SSD",
          "Belum ada. Di Pembersihan, klik kanan item bertanda 'Periksa dulu' (arsip, output, riwayat) › "
          "Pindahkan ke SSD.",
          "Panduan: Mac 256 GB + SSD eksternal"})
        EXPECT_TRUE(shown.contains(text)) << text;
    EXPECT_EQ(text("chooseCallout"), "Pilih salah satu SSD di atas sebagai 'SSD kerja' dulu.");
    EXPECT_EQ(text("chooseCallout", "symbol"), "hand.tap");
    EXPECT_EQ(find("relocateButton"), nullptr);
    EXPECT_EQ(find("revertButton"), nullptr);
    EXPECT_EQ(find("cache0"), nullptr);
    EXPECT_TRUE(texts().contains("SSD Eksternal"));
}

TEST_F(SSDViewTests, theGuideHasItsLinesInOrder) {
    open();
    constexpr std::array lines = {
        "Pakai enclosure NVMe Thunderbolt/USB4 (40 Gbps) + SSD NVMe TLC 1–2 TB. Hindari flashdisk & SSD SATA "
        "lama untuk build.",
        "Format APFS (Encrypted bila berisi kode & keystore). Jangan exFAT untuk data dev.",
        "Biarkan di disk internal: macOS, app (Xcode, Android Studio), runtime simulator, keychain, dan "
        "proyek yang sedang aktif dikerjakan.",
        "Arahkan ke SSD: DerivedData, Gradle home, arsip .xcarchive, folder output/screenshot, riwayat sesi "
        "AI, media, dan proyek lama.",
        "Sisakan minimal 30–40 GB kosong di disk internal untuk swap & update macOS.",
        "Selalu Eject sebelum mencabut SSD agar cache tidak rusak.",
    };
    QStringList expected = {"Panduan: Mac 256 GB + SSD eksternal"};
    for (std::size_t line = 0; line < lines.size(); ++line)
        expected += {QString::number(line + 1) + ".", lines[line]};
    EXPECT_EQ(texts(&item("guide")), expected);
}

TEST_F(SSDViewTests, reloadLooksForDrivesAgain) {
    ASSERT_TRUE(sees(0));
    open();
    plug("Kerja", {.uuid = "aa-1"});
    click("reloadButton");
    ASSERT_TRUE(waitFor([&] { return find("volume0") != nullptr; }));
    EXPECT_EQ(find("noVolumes"), nullptr);
    EXPECT_EQ(text("reloadButton"), "Muat ulang");
    EXPECT_EQ(text("reloadButton", "symbol"), "arrow.clockwise");
}

// Volumes

TEST_F(SSDViewTests, aCardShowsItsVolume) {
    const DiskSpace space(612'400'000'000, 1'000'000'000'000);
    openWithDrives();
    EXPECT_EQ(textIn(work, "free"), "612,4 GB kosong dari 1 TB");
    EXPECT_EQ(textIn(work, "format"), "APFS · USB");
    EXPECT_NE(findIn(work, "workBadge"), nullptr);
    EXPECT_EQ(findIn(other, "workBadge"), nullptr);
    EXPECT_EQ(textIn(work, "workButton"), "SSD kerja ✓");
    EXPECT_FALSE(isEnabledIn(work, "workButton"));
    EXPECT_EQ(textIn(other, "workButton"), "Jadikan SSD kerja");
    EXPECT_FALSE(isEnabledIn(other, "workButton")) << "it has no UUID";
    EXPECT_TRUE(texts(&item(work)).contains("Ownership diabaikan"));
    auto& bar = itemIn(work, "capacity");
    EXPECT_EQ(bar.property("used").toDouble(), 387'600'000'000);
    EXPECT_EQ(bar.property("total").toDouble(), 1'000'000'000'000);
    EXPECT_FALSE(bar.property("warning").toBool());
}

TEST_F(SSDViewTests, aFullDriveWarnsAndOneOfNoSizeDoesNot) {
    plug("Kerja", {.uuid = "aa-1"});
    {
        const DiskSpace space(99, 1'000);
        ASSERT_TRUE(seesSize(99, 1'000));
        open();
        EXPECT_TRUE(itemIn("volume0", "capacity").property("warning").toBool());
    }
    const DiskSpace space(0, 0);
    ASSERT_TRUE(seesSize(0, 0));
    EXPECT_FALSE(itemIn("volume0", "capacity").property("warning").toBool());
    EXPECT_EQ(textIn("volume0", "free"), "0 byte kosong dari 0 byte");
}

TEST_F(SSDViewTests, aDriveIsChosenForWorkByItsButton) {
    plug("Kerja", {.uuid = "aa-1"});
    plug("Lain", {.uuid = "aa-2"});
    ASSERT_TRUE(sees(2));
    open();
    EXPECT_NE(find("chooseCallout"), nullptr);
    const auto name = textIn("volume1", "name");
    clickIn("volume1", "workButton");
    EXPECT_EQ(textIn("volume1", "workButton"), "SSD kerja ✓");
    EXPECT_TRUE(isEnabledIn("volume0", "workButton"));
    EXPECT_EQ(find("chooseCallout"), nullptr);
    EXPECT_EQ(textIn("cacheCard", "relocateButton"), "Arahkan ke " + name);
    EXPECT_EQ(KorvantiSettings::load().workVolumeUUID, name == "Kerja" ? "aa-1" : "aa-2");
}

TEST_F(SSDViewTests, aDriveIsShownInTheFileViewer) {
    openWithDrives();
    clickIn(other, "revealButton");
    EXPECT_THAT(desktop.revealed, ElementsAre("/Volumes/Foto"));
}

TEST_F(SSDViewTests, aCommandIsCopiedByItsLink) {
    openWithDrives();
    EXPECT_EQ(textIn(work, "command"), "sudo diskutil enableOwnership \"/Volumes/Kerja\"");
    EXPECT_EQ(findIn(other, "copyButton"), nullptr);
    EXPECT_EQ(textIn(work, "copyButton"), "Salin");
    clickIn(work, "copyButton");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "sudo diskutil enableOwnership \"/Volumes/Kerja\"");
}

TEST_F(SSDViewTests, anExfatDriveForWorkWarnsAndTakesNoCaches) {
    plug("Foto", {.uuid = "aa-2", .fsType = "exfat", .formatName = "ExFAT"});
    ASSERT_TRUE(sees(1));
    open();
    EXPECT_NE(find("chooseCallout"), nullptr) << "it is not chosen by itself";
    clickIn("volume0", "workButton");
    EXPECT_EQ(textIn("cacheCard", "formatWarning"), "Butuh SSD berformat APFS.");
    clickIn("cache0", "cacheCheck");
    EXPECT_FALSE(isEnabledIn("cacheCard", "relocateButton"));
}

TEST_F(SSDViewTests, aCacheIsChosenByItsWordsToo) {
    openWithDrives();
    auto& row = item("cache2");
    bring(row);
    const auto place = placeOf(row);
    QTest::mouseClick(&window(), Qt::LeftButton, Qt::NoModifier,
                      QPoint(int(place.left()) + 200, int(place.center().y())));
    settle(20);
    EXPECT_TRUE(itemIn("cache2", "cacheCheck").property("checked").toBool());
    clickIn("cache2", "cacheCheck");
    EXPECT_FALSE(itemIn("cache2", "cacheCheck").property("checked").toBool()) << "once, not twice";
}

// What was moved

TEST_F(SSDViewTests, theMenuShowsWhereTheFolderIs) {
    openWithRecords();
    EXPECT_EQ(textIn("moved0", "movedStatus"), "Tersedia di SSD");
    EXPECT_EQ(textIn("moved1", "movedStatus"), "SSD tidak terpasang");
    EXPECT_EQ(textIn("moved0", "movedActions"), "Aksi");
    EXPECT_EQ(textIn("moved0", "movedSize"), "9,64 GB · 3 hari yang lalu");
    openMenu("moved0");
    EXPECT_EQ(text("revealMovedEntry"), "Tampilkan di Finder");
    EXPECT_EQ(text("restoreEntry"), "Kembalikan ke Mac");
    EXPECT_EQ(text("forgetEntry"), "Lupakan catatan (file tidak disentuh)");
    grab("ssd-menu.png");
    click("revealMovedEntry");
    EXPECT_THAT(desktop.revealed, ElementsAre("/Volumes/Kerja/Korvanti Offload/a"));
    settle(150);
    openMenu("moved1");
    EXPECT_EQ(text("restoreEntry"), "SSD tidak terpasang");
    EXPECT_FALSE(item("restoreEntry").isEnabled());
}

TEST_F(SSDViewTests, theMenuClosesWhenItsRecordGoes) {
    openWithRecords();
    openMenu("moved0");
    ASSERT_NE(find("forgetEntry"), nullptr);
    model().forget(model().offloads()[0]);
    settle(200);
    EXPECT_EQ(find("forgetEntry"), nullptr);
    EXPECT_EQ(textIn("moved0", "movedTitle"), "b");
}

TEST_F(SSDViewTests, theStatusIsLookedUpWhenThePaneIsSeenAgain) {
    openWithRecords();
    std::filesystem::remove_all("/Volumes/Kerja/Korvanti Offload/a");
    EXPECT_EQ(textIn("moved0", "movedStatus"), "Tersedia di SSD");
    model().setPane(Pane::overview);
    model().setPane(Pane::ssd);
    settle();
    EXPECT_EQ(textIn("moved0", "movedStatus"), "Folder di SSD hilang");
}

// Keys alone

TEST_F(SSDViewTests, allIsReachedByTheTabKeyInOrder) {
    openWithDrives();
    item("reloadButton").forceActiveFocus(Qt::TabFocusReason);
    const auto tabTo = [&](const QString& above, const QString& name) {
        press(Qt::Key_Tab);
        settle(5);
        EXPECT_TRUE(hasFocusIn(above, name)) << above.toStdString() << ": " << name.toStdString();
        if (!hasFocusIn(above, name))
            return;
        const auto place = placeOf(itemIn(above, name));
        EXPECT_TRUE(placeOf(item("ssdScroll")).contains(place)) << "in sight";
    };
    for (const QString card : {"volume0", "volume1"}) {
        if (card == work)
            tabTo(card, "copyButton");
        for (const auto* button : {"testButton", "revealButton", "ejectButton"})
            tabTo(card, button);
    }
    for (const auto* cache : {"cache0", "cache1", "cache2"}) {
        tabTo(cache, "cacheCheck");
        press(Qt::Key_Space);
        EXPECT_TRUE(itemIn(cache, "cacheCheck").property("checked").toBool());
    }
    tabTo("cacheCard", "relocateButton");
    press(Qt::Key_Return);
    EXPECT_TRUE(model().noticeMessage().has_value());
    EXPECT_TRUE(waitFor([&] { return model().relocationTargets().size() == 3; }));
}

TEST_F(SSDViewTests, recordsAreHandledByKeys) {
    openWithRecords();
    itemIn("moved0", "movedActions").forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Space);
    settle(150);
    ASSERT_NE(find("forgetEntry"), nullptr);
    press(Qt::Key_Escape);
    settle(150);
    EXPECT_EQ(find("forgetEntry"), nullptr);
    ASSERT_TRUE(hasFocusIn("moved0", "movedActions"));
    press(Qt::Key_Return);
    settle(150);
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    settle(200);
    EXPECT_EQ(model().offloads().size(), 1U);
    EXPECT_EQ(model().offloads()[0].title, "b");
    EXPECT_TRUE(hasFocusIn("moved0", "movedActions")) << "the next one";
}

// Odd texts

TEST_F(SSDViewTests, namesAreTextWhateverIsInThem) {
    plug("<h1>Kerja</h1>", {.uuid = "aa-1"});
    auto odd = record("<img src=x>\nsecond", "/Volumes/x");
    odd.originalPath = "/Users/tester/<b>x</b>";
    auto hebrew = record("\u05e9\u05dc\u05d5\u05dd", "/Volumes/x");
    saveRecords({odd, hebrew});
    ASSERT_TRUE(sees(1));
    open();
    EXPECT_EQ(textIn("volume0", "name"), "<h1>Kerja</h1>");
    EXPECT_EQ(textIn("moved0", "movedTitle"), "<img src=x>\uFFFDsecond");
    EXPECT_EQ(textIn("moved0", "movedPath"), "~/<b>x</b>");
    for (const auto* name : {"movedTitle", "movedPath"})
        EXPECT_EQ(itemIn("moved1", name).property("effectiveHorizontalAlignment").toInt(), Qt::AlignLeft);
}

// Room

TEST_F(SSDViewTests, nothingOverlapsHoweverLongTheTextsAndLargeTheType) {
    const auto path =
        plug(std::string(100, 'W'), {.uuid = "aa-1", .facts = "<key>GlobalPermissionsEnabled</key><false/>"});
    plug("Lain", {.uuid = "aa-2", .fsType = "exfat", .formatName = std::string(200, 'F')});
    auto lengthy = record(std::string(300, 'W'), path);
    lengthy.bytes = std::numeric_limits<std::int64_t>::max();
    saveRecords({lengthy, record("b", "/Volumes/x")});
    chooseWorkVolume("aa-1");
    ASSERT_TRUE(sees(2));
    open();
    for (const double scale : {1.0, 2.0}) {
        setFontScale(scale);
        for (const auto& size : {QSize(1140, 760), QSize(960, 620)}) {
            resize(size.width(), size.height());
            settle(100);
            expectOrder(item("ssdScroll"));
            grab(QString("ssd-long-%1-%2.png").arg(scale).arg(size.width()));
        }
    }
}

// Who can't see it

TEST_F(SSDViewTests, itReadsWell) {
    openWithRecords();
    const auto face = [&](const QString& above, const QString& name) {
        return QAccessible::queryAccessibleInterface(name.isEmpty() ? &item(above) : &itemIn(above, name));
    };
    const auto nameOf = [&](const QString& above, const QString& name = {}) {
        auto* const found = face(above, name);
        return found ? found->text(QAccessible::Name) : QString("(nothing)");
    };
    EXPECT_EQ(nameOf("volume0"), "Kerja");
    EXPECT_EQ(face("volume0", "")->role(), QAccessible::Grouping);
    EXPECT_TRUE(nameOf("volume0", "capacity").startsWith("Terpakai "));
    EXPECT_EQ(nameOf("volume0", "testButton"), "Uji kecepatan (1 GB)");
    EXPECT_EQ(face("volume0", "testButton")->role(), QAccessible::Button);
    for (const auto* button : {"workButton", "testButton", "revealButton", "ejectButton"})
        EXPECT_EQ(face("volume0", button)->text(QAccessible::Description),
                  face("volume0", "")->text(QAccessible::Name));
    EXPECT_EQ(nameOf("cache2", "cacheCheck"), "Cache npm");
    EXPECT_EQ(face("cache2", "cacheCheck")->role(), QAccessible::CheckBox);
    EXPECT_EQ(face("cache2", "cacheCheck")->text(QAccessible::Description),
              "Lewat npm_config_cache di ~/.zshenv, aktif hanya bila SSD terpasang.");
    EXPECT_EQ(nameOf("moved0"), "a");
    EXPECT_EQ(nameOf("moved0", "movedActions"), "Aksi");
    EXPECT_EQ(face("moved0", "movedActions")->text(QAccessible::Description), "a");
    EXPECT_EQ(face("moved0", "movedActions")->role(), QAccessible::Button);
    // All there is to click, as it is heard.
    QStringList controls;
    const std::function<void(QAccessibleInterface*)> look = [&](QAccessibleInterface* one) {
        if (!one)
            return;
        if (one->role() == QAccessible::Button || one->role() == QAccessible::CheckBox ||
            one->role() == QAccessible::Link) {
            const auto* const control = qobject_cast<QQuickItem*>(one->object());
            if (control && item("ssdScroll").isAncestorOf(control) && !one->state().invisible)
                controls.append(one->text(QAccessible::Name));
        }
        for (int child = 0; child < one->childCount(); ++child)
            look(one->child(child));
    };
    look(QAccessible::queryAccessibleInterface(&window()));
    EXPECT_EQ(controls, (QStringList{"SSD kerja ✓", "Uji kecepatan (1 GB)", "Tampilkan", "Keluarkan",
                                     "DerivedData Xcode", "Gradle (cache, wrapper, JDK)", "Cache npm",
                                     "Arahkan ke Kerja", "Kembalikan ke Mac", "Aksi", "Aksi"}));
}

} // namespace
} // namespace korvanti
