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

TEST_F(RowListTests, whatIsNotThereHasNoValue) {
    list.setRows({row("a")});
    EXPECT_FALSE(list.data(list.index(0), Qt::UserRole + 1).isValid());
    EXPECT_FALSE(list.data(list.index(1), Qt::UserRole).isValid());
    EXPECT_FALSE(list.data({}, Qt::UserRole).isValid());
    EXPECT_EQ(list.rowCount(list.index(0)), 0);
}

} // namespace
} // namespace korvanti
