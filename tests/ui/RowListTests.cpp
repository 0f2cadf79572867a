#include "ui/RowList.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace korvanti {
namespace {

class RowListTests : public ::testing::Test {
protected:
    static RowList::Row row(const QString& name) { return {{"name", name}}; }
    [[nodiscard]] QStringList names() const {
        QStringList names;
        for (int number = 0; number < list.rowCount(); ++number)
            names.append(list.data(list.index(number), Qt::UserRole).toString());
        return names;
    }

    RowList list{{"name"}};
    QAbstractItemModelTester tester{&list, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(RowListTests, rowsAreWhatWasSetWhetherMoreOrFewer) {
    for (const auto& expected : {QStringList{"a", "b"}, {"a", "c", "d"}, {"e"}, {}, {"f", "g"}}) {
        QList<RowList::Row> rows;
        for (const auto& name : expected)
            rows.append(row(name));
        list.setRows(rows);
        EXPECT_EQ(names(), expected);
    }
}

TEST_F(RowListTests, onlyRowsThatAreDifferentAreTold) {
    list.setRows({row("a"), row("b"), row("c")});
    QSignalSpy changes(&list, &RowList::dataChanged);
    QSignalSpy resets(&list, &RowList::modelReset);
    list.setRows({row("a"), row("x"), row("c")});
    ASSERT_EQ(changes.count(), 1);
    EXPECT_EQ(changes[0][0].toModelIndex().row(), 1);
    EXPECT_EQ(changes[0][1].toModelIndex().row(), 1);
    list.setRows({row("a"), row("x"), row("c")});
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(resets.count(), 0);
}

// Rows that stand for somebody

TEST_F(RowListTests, aRowThatStandsForSomebodyKeepsItsPlaceAmongTheOthers) {
    const auto named = [](const QString& name, int age) {
        return RowList::Row{{"name", name}, {"age", age}};
    };
    list.setRows({named("a", 1), named("b", 1), named("c", 1)}, "name");
    const QPersistentModelIndex a = list.index(0);
    const QPersistentModelIndex b = list.index(1);
    const QPersistentModelIndex c = list.index(2);
    QSignalSpy changes(&list, &RowList::dataChanged);
    list.setRows({named("c", 1), named("x", 1), named("b", 2)}, "name");
    EXPECT_EQ(names(), (QStringList{"c", "x", "b"}));
    EXPECT_FALSE(a.isValid());
    EXPECT_EQ(b.row(), 2);
    EXPECT_EQ(c.row(), 0);
    ASSERT_EQ(changes.count(), 1);
    EXPECT_EQ(changes[0][0].toModelIndex().row(), 2);
    EXPECT_EQ(list.rows()[2].value("age"), 2);
}

TEST_F(RowListTests, inWhateverOrderTheyComeTheRowsAreThoseThatWereSet) {
    const QString letters = "abcabd"; // some of them twice
    for (int step = 0; step < 2'000; ++step) {
        QList<RowList::Row> rows;
        QStringList expected;
        for (int number = step; number > 0; number /= 7) {
            const auto digit = number % 7;
            if (digit == 6)
                continue;
            expected.append(letters[digit]);
            rows.append(row(letters[digit]));
        }
        list.setRows(rows, "name");
        ASSERT_EQ(names(), expected) << step;
    }
}

TEST_F(RowListTests, whatIsNotThereHasNoValue) {
    list.setRows({row("a")});
    EXPECT_FALSE(list.data(list.index(0), Qt::UserRole + 1).isValid());
    EXPECT_FALSE(list.data(list.index(1), Qt::UserRole).isValid());
    EXPECT_FALSE(list.data({}, Qt::UserRole).isValid());
    EXPECT_EQ(list.rowCount(list.index(0)), 0);
}

} // namespace
} // namespace korvanti
