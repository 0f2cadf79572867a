#pragma once

#include "shell/AppModel.h"
#include "ui/RowList.h"

#include <QObject>
#include <QString>
#include <QTimer>
#include <cstdint>
#include <optional>
#include <qqmlregistration.h>
#include <set>
#include <string>
#include <vector>

namespace korvanti {

/// The sheet that removes one application with chosen parts of its data, or those alone. It removes nothing
/// itself: what is chosen goes the way of every cleanup. What it last showed stays until it is opened again,
/// so that nothing moves while it closes.
class UninstallModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY isOpenChanged)

    Q_PROPERTY(QString icon READ icon NOTIFY appChanged)
    Q_PROPERTY(QString name READ name NOTIFY appChanged)
    Q_PROPERTY(QString origin READ origin NOTIFY appChanged) ///< version and store; may be empty
    Q_PROPERTY(QString sizeText READ totalText NOTIFY appChanged)
    Q_PROPERTY(QString advice READ advice NOTIFY appChanged)
    Q_PROPERTY(bool isSuggested READ isSuggested NOTIFY appChanged)
    Q_PROPERTY(bool hasData READ hasData NOTIFY appChanged)

    /// Only a warning; empty while the application is not open.
    Q_PROPERTY(QString runningText READ runningText NOTIFY runningTextChanged)

    /// "title", "path", "sizeText", "isChosen": the bundle, then its data
    Q_PROPERTY(korvanti::RowList* rows READ rows CONSTANT)
    Q_PROPERTY(QString confirmText READ confirmText NOTIFY choiceChanged)
    Q_PROPERTY(bool canConfirm READ canConfirm NOTIFY choiceChanged)

public:
    explicit UninstallModel(AppModel& model, QObject* parent = nullptr);

    void open(InstalledApp app);

    [[nodiscard]] bool isOpen() const { return isOpen_; }
    [[nodiscard]] QString icon() const;
    [[nodiscard]] QString name() const;
    [[nodiscard]] QString origin() const;
    [[nodiscard]] QString totalText() const;
    [[nodiscard]] QString advice() const;
    [[nodiscard]] bool isSuggested() const { return app_.suggested; }
    [[nodiscard]] bool hasData() const { return !app_.data.empty(); }
    [[nodiscard]] const QString& runningText() const { return runningText_; }
    [[nodiscard]] RowList* rows() { return &rows_; }
    [[nodiscard]] QString confirmText() const;
    [[nodiscard]] bool canConfirm() const { return chosenBytes() != 0; }

    Q_INVOKABLE void toggle(int row);
    /// Asks the application to end.
    Q_INVOKABLE void closeApp();
    Q_INVOKABLE void confirm();
    Q_INVOKABLE void confirmDataOnly();
    Q_INVOKABLE void dismiss();

signals:
    void isOpenChanged();
    void appChanged();
    void runningTextChanged();
    void choiceChanged();

private:
    [[nodiscard]] std::int64_t chosenBytes() const;
    /// The bundle first, then data in its order.
    [[nodiscard]] std::vector<std::string> chosenPaths() const;
    void setOpen(bool isOpen);
    void lookIfRunning();
    void updateRows();

    AppModel& model_;
    bool isOpen_ = false;
    InstalledApp app_;
    bool includeApp_ = true;
    std::set<std::string> selectedData_; ///< paths
    QString runningText_;
    RowList rows_{{"title", "path", "sizeText", "isChosen"}};
    QTimer timer_;
};

} // namespace korvanti
