#pragma once

#include "ShellSupport.h"
#include "shell/AppModel.h"
#include "support/BoxFolder.h"
#include "ui/Theme.h"
#include "ui/WindowModels.h"

#include <QImage>
#include <QPoint>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace korvanti::testing {

/// The clock's ticks are told by that signal: one as soon as it is shown, others from then on, and none else.
/// The minutes last but a moment here; `pass` is what happens in them.
void expectToFollow(
    DateClock& clock, QSignalSpy& told, const std::function<void()>& pass = [] {});

/// The window over a model on the home of the Mac in the box, or one component alone, to look at and to click
/// into. Items are found by their `objectName`. Runs in the box.
class UiTests : public ::testing::Test {
protected:
    UiTests();
    ~UiTests() override;

    /// Made on first use, so that a test can lay down what they are to find.
    AppModel& model();
    WindowModels& panes();
    FrameModel& frame() { return panes().frame; }
    OverviewModel& overview() { return panes().overview; }
    CleanupModel& cleanup() { return panes().cleanup; }
    ConfirmModel& confirm() { return panes().confirm; }
    MapModel& map() { return panes().map; }
    AppsModel& apps() { return panes().apps; }
    SsdModel& ssd() { return panes().ssd; }
    HistoryModel& history() { return panes().history; }
    /// The program's window with all of these, shown.
    QQuickWindow& window();
    /// Instead of that, a window with one piece of QML in it: "PillButton { text: "Go" }". Its own width and
    /// height count, or else those given; `properties` are set on it from the start.
    QQuickItem& show(const QString& qml, QSize size = {400, 300}, const QVariantMap& properties = {});
    /// From now on that one is clicked into; it stays the test's.
    void adopt(QQuickWindow& window) { window_ = &window; }
    [[nodiscard]] QQmlEngine& engine() { return *engine_; }
    [[nodiscard]] Theme& theme();

    /// A folder that can be cleaned, of 31.46 GB to believe the report.
    [[nodiscard]] CleanupItem cache(const std::string& name, bool recommended = true) const;
    /// What the model finds at its start.
    void saveReport(std::vector<CleanupItem> items) const;

    /// Null when there is no such item that can be seen.
    [[nodiscard]] QQuickItem* find(const QString& objectName);
    /// The test fails when there is none.
    QQuickItem& item(const QString& objectName);
    /// A property of an item as text: text("title").
    QString text(const QString& objectName, const char* property = "text");
    /// All text that can be seen, from top to bottom as the items lie in each other.
    [[nodiscard]] QStringList texts(QQuickItem* below = nullptr);

    /// What is read out without saying anything: the texts without a name, by what they show.
    [[nodiscard]] QStringList unspokenTexts();

    void click(const QString& objectName);
    void doubleClick(const QString& objectName);
    void hover(const QString& objectName);
    /// Holds the button down on it until `release`.
    void hold(const QString& objectName);
    void release(const QString& objectName);
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void holdKey(Qt::Key key, int milliseconds = 200);
    void type(const QString& text);
    /// Lets what has been set in motion come to its end.
    void settle(int milliseconds = 50);
    /// Until the sheet that is shown takes an answer.
    void readSheet();

    void resize(int width, int height);
    void setDark(bool dark);
    void setFontScale(double scale);
    /// The window's picture. Also saved as that file in the folder that KORVANTI_PICTURES names, if any.
    QImage grab(const QString& fileName = {});
    /// Where an item lies in the window.
    [[nodiscard]] QRectF place(const QString& objectName);

    BoxMac mac;
    ScriptedDesktop::Script desktop;

private:
    [[nodiscard]] QQuickWindow& shown();
    [[nodiscard]] QPoint middle(const QString& objectName);

    std::unique_ptr<AppModel> model_;
    std::unique_ptr<WindowModels> panes_;
    std::unique_ptr<QQmlEngine> engine_;
    std::unique_ptr<QQmlComponent> component_;
    std::unique_ptr<QObject> root_;
    QQuickWindow* window_ = nullptr; ///< the root, or what it is in
    std::unique_ptr<QQuickWindow> around_;
};

} // namespace korvanti::testing
