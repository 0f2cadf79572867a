#include "ui/ConfirmModel.h"

#include "CleanupSupport.h"
#include "base/ByteText.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <fstream>
#include <string>
#include <vector>

namespace korvanti {
namespace {

using namespace korvanti::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using State = ConfirmModel::State;
using Tester = QAbstractItemModelTester;

class ConfirmModelTests : public CleanupFixture {
protected:
    ConfirmModel& sheet() {
        if (!rowsTester_) {
            rowsTester_ = std::make_unique<Tester>(confirm().rows(), Tester::FailureReportingMode::Fatal);
            skippedTester_ =
                std::make_unique<Tester>(confirm().skipped(), Tester::FailureReportingMode::Fatal);
        }
        return confirm();
    }
    /// The sheet with these items, and all warnings there.
    void open(const std::vector<CleanupItem>& items) {
        sheet();
        model().requestCleanup(items);
        ASSERT_TRUE(waitFor([&] { return sheet().isReady(); }));
    }
    void clean() {
        sheet().confirm();
        ASSERT_TRUE(model().isCleaning());
        ASSERT_TRUE(waitFor([&] { return !model().isCleaning(); }));
    }
    [[nodiscard]] CleanupItem folderItem(const std::string& name,
                                         CleanupAction action = CleanupAction::delete_()) const {
        auto made = item(name, Safety::regenerable, std::move(action));
        mac.home.file("Library/Caches/" + name + "/file", {.text = "12345"});
        made.path = mac.home.path("Library/Caches/" + name);
        return made;
    }
    static CleanupItem sized(CleanupItem item, std::int64_t bytes) {
        item.bytes = bytes;
        return item;
    }

private:
    std::unique_ptr<Tester> rowsTester_;
    std::unique_ptr<Tester> skippedTester_;
};

// Confirmation

TEST_F(ConfirmModelTests, theSheetIsClosedUntilACleanupIsAskedFor) {
    EXPECT_FALSE(sheet().isOpen());
    EXPECT_EQ(sheet().state(), State::Confirm);
    EXPECT_FALSE(sheet().isReady());
    QSignalSpy openings(&sheet(), &ConfirmModel::isOpenChanged);
    model().requestCleanup({item("a")});
    EXPECT_TRUE(sheet().isOpen());
    EXPECT_EQ(sheet().state(), State::Confirm);
    EXPECT_EQ(openings.count(), 1);
}

TEST_F(ConfirmModelTests, theItemsAreGroupedByTheirVerbsInOrder) {
    open({sized(item("trash", Safety::review, CleanupAction::trash()), 1'000'000),
          sized(item("one"), 2'000'000),
          sized(item("sim", Safety::costly, CleanupAction::simulatorDelete("A-B")), 3'000'000),
          sized(item("two"), 4'000'000)});
    EXPECT_THAT(column(*sheet().rows(), "title"),
                ElementsAre("Hapus permanen", "one", "two", "Hapus simulator", "sim", "Pindah ke Tong Sampah",
                            "trash"));
    EXPECT_THAT(column(*sheet().rows(), "text"),
                ElementsAre(bytesText(6'000'000), bytesText(2'000'000), bytesText(4'000'000),
                            bytesText(3'000'000), bytesText(3'000'000), bytesText(1'000'000),
                            bytesText(1'000'000)));
    EXPECT_THAT(column(*sheet().rows(), "isHeader"),
                ElementsAre("true", "false", "false", "true", "false", "true", "false"));
    EXPECT_EQ(sheet().confirmText(), "Bersihkan 4 item");
}

TEST_F(ConfirmModelTests, theHeadlinePromisesWhatIsFreeAtOnce) {
    open({sized(item("trash", Safety::review, CleanupAction::trash()), 1'000'000),
          sized(item("gone"), 2'000'000),
          sized(item("empty", Safety::review, CleanupAction::emptyTrash()), 5'000'000)});
    EXPECT_EQ(sheet().headline().toStdString(), "Ruang yang langsung bebas: " + bytesText(7'000'000));
}

TEST_F(ConfirmModelTests, aCleanupOfTrashedItemsOnlyFreesNothingAtOnce) {
    open({item("a", Safety::review, CleanupAction::trash())});
    EXPECT_EQ(sheet().headline().toStdString(), "Ruang yang langsung bebas: " + bytesText(0));
}

TEST_F(ConfirmModelTests, theWarningsComeBeforeTheCleaningIsPossible) {
    sheet();
    model().requestCleanup({sized(item("a", Safety::review, CleanupAction::trash()), 1'000'000)});
    EXPECT_FALSE(sheet().isReady());
    sheet().confirm();
    EXPECT_FALSE(model().isCleaning());
    ASSERT_TRUE(waitFor([&] { return sheet().isReady(); }));
    EXPECT_EQ(
        sheet().warnings(),
        QStringList({QString::fromStdString(bytesText(1'000'000)) +
                     " dipindah ke Tong Sampah: ruangnya baru bebas setelah Tong Sampah dikosongkan."}));
}

TEST_F(ConfirmModelTests, theWarningsOfAnEarlierOpeningAreForgotten) {
    sheet();
    model().requestCleanup({item("a", Safety::review, CleanupAction::trash())});
    sheet().dismiss();
    model().requestCleanup({item("b")});
    ASSERT_TRUE(waitFor([&] { return sheet().isReady(); }));
    QCoreApplication::processEvents();
    EXPECT_THAT(sheet().warnings(), IsEmpty());
}

TEST_F(ConfirmModelTests, titlesAreOneLineOfText) {
    open({item("<i>x</i>\ny")});
    EXPECT_EQ(column(*sheet().rows(), "title").back(), "<i>x</i>\uFFFDy");
}

TEST_F(ConfirmModelTests, dismissingClosesTheSheetAndCleansNothing) {
    open({folderItem("a")});
    sheet().dismiss();
    EXPECT_FALSE(sheet().isOpen());
    EXPECT_EQ(sheet().confirmText(), "Bersihkan 1 item") << "for as long as it fades";
    sheet().confirm();
    EXPECT_FALSE(model().isCleaning());
    EXPECT_EQ(textOf(mac.home.path("Library/Caches/a/file")), "12345");
}

// Running

TEST_F(ConfirmModelTests, theSheetStaysOpenWhileItCleans) {
    open({folderItem("a")});
    sheet().confirm();
    EXPECT_EQ(sheet().state(), State::Running);
    EXPECT_EQ(sheet().progress(), 0.0);
    sheet().dismiss();
    EXPECT_TRUE(sheet().isOpen());
    ASSERT_TRUE(waitFor([&] { return sheet().state() == State::Result; }));
    EXPECT_EQ(sheet().progress(), 1.0);
}

TEST_F(ConfirmModelTests, itTellsWhatIsBeingCleaned) {
    auto large = folderItem("large"); // so that there is time to look
    large.title = "Large\nfolder";
    for (int number = 0; number < 10'000; ++number)
        std::ofstream(large.path + "/" + std::to_string(number));
    open({folderItem("small"), large});
    QStringList shown;
    QObject::connect(&sheet(), &ConfirmModel::progressChanged, &sheet(),
                     [&] { shown.append(QString("%1 %2").arg(sheet().progress()).arg(sheet().current())); });
    clean();
    EXPECT_TRUE(shown.contains(QString("0.5 Large\uFFFDfolder"))) << shown.join("|").toStdString();
}

// Result

TEST_F(ConfirmModelTests, theResultSumsUpWhatWasFreed) {
    open({sized(folderItem("a"), 1'000'000), sized(folderItem("b"), 2'000'000)});
    clean();
    EXPECT_EQ(sheet().state(), State::Result);
    EXPECT_EQ(sheet().freedText().toStdString(), "Selesai " + bytesText(3'000'000) + " dibebaskan");
    EXPECT_EQ(sheet().freeText().toStdString(), "Ruang kosong sekarang: " + bytesText(model().freeBytes()));
    EXPECT_EQ(sheet().skippedText(), "");
    EXPECT_EQ(sheet().skipped()->rowCount(), 0);
}

TEST_F(ConfirmModelTests, aFailedItemIsListedWithItsMessage) {
    auto outside = item("outside");
    outside.path = "/etc/passwd";
    open({sized(folderItem("a"), 1'000'000), outside});
    clean();
    EXPECT_EQ(sheet().freedText().toStdString(), "Selesai " + bytesText(1'000'000) + " dibebaskan");
    EXPECT_EQ(sheet().skippedText(), "1 item dilewati:");
    EXPECT_THAT(column(*sheet().skipped(), "title"), ElementsAre("outside"));
    EXPECT_THAT(column(*sheet().skipped(), "text"), ElementsAre(model().outcomes()[1].message));
    EXPECT_NE(model().outcomes()[1].message, "");
}

TEST_F(ConfirmModelTests, closingTheResultLeavesTheShrunkenList) {
    const auto gone = folderItem("a");
    saveReport({gone, item("b", Safety::keep)});
    open({gone});
    clean();
    sheet().dismiss();
    EXPECT_FALSE(sheet().isOpen());
    EXPECT_EQ(sheet().state(), State::Result) << "for as long as it fades";
    EXPECT_FALSE(model().isScanning());
    ASSERT_EQ(model().filteredItems().size(), 1U);
    EXPECT_EQ(model().filteredItems().front().title, "b");
}

TEST_F(ConfirmModelTests, rescanningClosesTheSheetAndScans) {
    open({folderItem("a")});
    clean();
    sheet().rescan();
    EXPECT_FALSE(sheet().isOpen());
    EXPECT_TRUE(model().isScanning());
    ASSERT_TRUE(waitFor([&] { return !model().isScanning(); }));
}

TEST_F(ConfirmModelTests, theNextCleanupBeginsWithTheConfirmationAgain) {
    open({folderItem("a")});
    clean();
    sheet().dismiss();
    open({folderItem("b")});
    EXPECT_EQ(sheet().state(), State::Confirm);
    EXPECT_EQ(column(*sheet().rows(), "title").back(), "b");
}

} // namespace
} // namespace korvanti
