#pragma once

#include "shell/AppModel.h"
#include "ui/ItemListModel.h"

#include <QObject>
#include <QPersistentModelIndex>
#include <QString>
#include <QStringList>
#include <qqmlregistration.h>

namespace korvanti {

/// What the cleanup pane shows and does. Rows are named by their number in `items`; the menu keeps hold of
/// its row, and does nothing once that has gone.
class CleanupModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")
    Q_PROPERTY(korvanti::ItemListModel* items READ items CONSTANT)

    Q_PROPERTY(QStringList filters READ filters CONSTANT)
    Q_PROPERTY(int filterIndex READ filterIndex WRITE setFilterIndex NOTIFY filterIndexChanged)
    /// The first one stands for all categories and has no symbol.
    Q_PROPERTY(QStringList categories READ categories CONSTANT)
    Q_PROPERTY(QStringList categorySymbols READ categorySymbols CONSTANT)
    Q_PROPERTY(int categoryIndex READ categoryIndex WRITE setCategoryIndex NOTIFY categoryIndexChanged)
    Q_PROPERTY(QString search READ search WRITE setSearch NOTIFY searchChanged)

    /// There is nothing to list; the three texts say why.
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY contentsChanged)
    Q_PROPERTY(QString emptySymbol READ emptySymbol NOTIFY contentsChanged)
    Q_PROPERTY(QString emptyTitle READ emptyTitle NOTIFY contentsChanged)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY contentsChanged)

    Q_PROPERTY(QString selectedText READ selectedText NOTIFY selectedChanged)
    Q_PROPERTY(QString selectedSizeText READ selectedSizeText NOTIFY selectedChanged)
    Q_PROPERTY(bool canClean READ canClean NOTIFY selectedChanged)

    Q_PROPERTY(bool hasMenu READ hasMenu NOTIFY menuChanged)
    Q_PROPERTY(bool canOffload READ canOffload NOTIFY menuChanged)
    Q_PROPERTY(bool isOffloadable READ isOffloadable NOTIFY menuChanged)
    Q_PROPERTY(QString offloadText READ offloadText NOTIFY menuChanged)
    /// Empty where the item can't be cleaned.
    Q_PROPERTY(QString cleanText READ cleanText NOTIFY menuChanged)

public:
    explicit CleanupModel(AppModel& model, Clock clock = currentInstant, QObject* parent = nullptr);

    [[nodiscard]] ItemListModel* items() { return &items_; }

    [[nodiscard]] QStringList filters() const;
    [[nodiscard]] int filterIndex() const;
    void setFilterIndex(int index);
    [[nodiscard]] QStringList categories() const;
    [[nodiscard]] QStringList categorySymbols() const;
    [[nodiscard]] int categoryIndex() const;
    void setCategoryIndex(int index);
    [[nodiscard]] QString search() const;
    void setSearch(const QString& text);

    [[nodiscard]] bool isEmpty() const { return items_.rowCount() == 0; }
    [[nodiscard]] QString emptySymbol() const;
    [[nodiscard]] QString emptyTitle() const;
    [[nodiscard]] QString emptyText() const;

    [[nodiscard]] const QString& selectedText() const { return selectedText_; }
    [[nodiscard]] const QString& selectedSizeText() const { return selectedSizeText_; }
    [[nodiscard]] bool canClean() const { return canClean_; }

    [[nodiscard]] bool hasMenu() const { return menuRow_.isValid(); }
    [[nodiscard]] bool isOffloadable() const;
    [[nodiscard]] bool canOffload() const;
    [[nodiscard]] QString offloadText() const;
    [[nodiscard]] QString cleanText() const;

    Q_INVOKABLE void toggle(int row);
    Q_INVOKABLE void toggleInstructions(int row);
    Q_INVOKABLE void selectRecommended();
    Q_INVOKABLE void clearSelection();
    Q_INVOKABLE void requestCleanup();

    /// From now on the menu is about that row.
    Q_INVOKABLE void openMenu(int row);
    Q_INVOKABLE void reveal();
    Q_INVOKABLE void copyPath();
    Q_INVOKABLE void offload();
    Q_INVOKABLE void cleanOne();

signals:
    void filterIndexChanged();
    void categoryIndexChanged();
    void searchChanged();
    void contentsChanged();
    void selectedChanged();
    void menuChanged();

private:
    [[nodiscard]] const CleanupItem* menuItem() const { return items_.item(menuRow_.row()); }
    void updateSelected();
    void onRows();

    AppModel& model_;
    ItemListModel items_;
    QString selectedText_;
    QString selectedSizeText_;
    bool canClean_ = false;
    QPersistentModelIndex menuRow_;
};

} // namespace korvanti
