#pragma once

#include "shell/AppModel.h"
#include "shell/Background.h"
#include "ui/RowList.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <qqmlregistration.h>

namespace korvanti {

/// What the sheet shows that every cleanup goes through. What it last showed stays until it is opened again,
/// so that nothing moves while it closes.
class ConfirmModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY isOpenChanged)
    Q_PROPERTY(State state READ state NOTIFY stateChanged)

    Q_PROPERTY(QString headline READ headline NOTIFY itemsChanged)
    Q_PROPERTY(korvanti::RowList* rows READ rows
                   CONSTANT) ///< headers with their sum, items with all that goes with them
    Q_PROPERTY(QString confirmText READ confirmText NOTIFY itemsChanged)
    /// All that there is to warn of is known; nothing is cleaned before.
    Q_PROPERTY(bool isReady READ isReady NOTIFY warningsChanged)
    Q_PROPERTY(QStringList warnings READ warnings NOTIFY warningsChanged)

    Q_PROPERTY(double progress READ progress NOTIFY progressChanged) ///< 0 to 1
    Q_PROPERTY(QString current READ current NOTIFY progressChanged)

    Q_PROPERTY(QString freedText READ freedText NOTIFY outcomesChanged)
    Q_PROPERTY(QString freeText READ freeText NOTIFY freeTextChanged)
    Q_PROPERTY(QString skippedText READ skippedText NOTIFY outcomesChanged) ///< empty when all went well
    Q_PROPERTY(korvanti::RowList* skipped READ skipped CONSTANT)            ///< titles with their messages

public:
    enum class State { Confirm, Running, Result };
    Q_ENUM(State)

    explicit ConfirmModel(AppModel& model, QObject* parent = nullptr);

    [[nodiscard]] bool isOpen() const { return model_.pendingCleanup().has_value(); }
    [[nodiscard]] State state() const;
    [[nodiscard]] const QString& headline() const { return headline_; }
    [[nodiscard]] RowList* rows() { return &rows_; }
    [[nodiscard]] const QString& confirmText() const { return confirmText_; }
    [[nodiscard]] bool isReady() const { return isReady_; }
    [[nodiscard]] const QStringList& warnings() const { return warnings_; }
    [[nodiscard]] double progress() const { return model_.cleanProgress(); }
    [[nodiscard]] QString current() const;
    [[nodiscard]] const QString& freedText() const { return freedText_; }
    [[nodiscard]] QString freeText() const;
    [[nodiscard]] const QString& skippedText() const { return skippedText_; }
    [[nodiscard]] RowList* skipped() { return &skipped_; }

    Q_INVOKABLE void confirm();
    /// Closes the sheet; nothing while a cleanup runs.
    Q_INVOKABLE void dismiss();
    Q_INVOKABLE void rescan();

signals:
    void isOpenChanged();
    void stateChanged();
    void itemsChanged();
    void warningsChanged();
    void progressChanged();
    void outcomesChanged();
    void freeTextChanged();

private:
    void updateItems();
    void updateOutcomes();

    AppModel& model_;
    QString headline_;
    RowList rows_{{"isHeader", "title", "text", "paths", "showsPaths"}};
    QString confirmText_;
    bool isReady_ = false;
    QStringList warnings_;
    int opening_ = 0; ///< which one the sheet is at; a late word about an earlier one is dropped
    QString freedText_;
    QString skippedText_;
    RowList skipped_{{"title", "text"}};

    Background background_{*this}; ///< the last, so that it ends first
};

} // namespace korvanti
