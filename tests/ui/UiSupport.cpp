#include "UiSupport.h"

#include "base/Json.h"
#include "scan/ReportJson.h"
#include "ui/AppIconProvider.h"
#include "ui/Ui.h"

#include <QAccessible>
#include <QColor>
#include <QDeadlineTimer>
#include <QFont>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPalette>
#include <QTest>
#include <QTimer>
#include <QtQml/QQmlExtensionPlugin>
#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <utility>

Q_IMPORT_QML_PLUGIN(Korvanti_UiPlugin)

namespace korvanti::testing {
namespace {

/// What Qt Quick complains of is a fault of ours.
void failOnWarning(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    std::fprintf(stderr, "%s\n", qPrintable(message));
    const bool isOfTheSystem =
        message.contains("XDG_RUNTIME_DIR") || message.contains("plugin does not support");
    if (type != QtDebugMsg && type != QtInfoMsg && !isOfTheSystem)
        ADD_FAILURE() << (context.file ? context.file : "") << ": " << message.toStdString();
}

QGuiApplication& guiApplication() {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (!qEnvironmentVariableIsSet("QT_QUICK_BACKEND"))
        qputenv("QT_QUICK_BACKEND", "software");
    static int count = 1;
    static char name[] = "tests";
    static char* arguments[] = {name, nullptr};
    // Never taken down: what Qt keeps in statics would be gone before it.
    static auto* const application = new QGuiApplication(count, arguments);
    qInstallMessageHandler(failOnWarning);
    return *application;
}

QQuickItem* findBelow(QQuickItem* item, const QString& objectName) {
    if (!item->isVisible())
        return nullptr;
    if (item->objectName() == objectName)
        return item;
    for (auto* child : item->childItems()) {
        if (auto* const found = findBelow(child, objectName))
            return found;
    }
    return nullptr;
}

void collectTexts(QQuickItem* item, QStringList& texts) {
    if (!item->isVisible())
        return;
    if (item->inherits("QQuickText") && !item->property("text").toString().isEmpty())
        texts.append(item->property("text").toString());
    for (auto* child : item->childItems())
        collectTexts(child, texts);
}

/// Goes through what a reader finds.
void collectUnspoken(QAccessibleInterface* face, QStringList& texts) {
    if (face == nullptr || face->state().invisible)
        return;
    if (face->role() == QAccessible::StaticText && face->text(QAccessible::Name).isEmpty()) {
        const auto shown = face->object()->property("text").toString();
        texts.append(shown.isEmpty() ? face->object()->objectName() : shown);
    }
    for (int place = 0; place < face->childCount(); ++place)
        collectUnspoken(face->child(place), texts);
}

} // namespace

void expectToFollow(DateClock& clock, QSignalSpy& told, const std::function<void()>& pass) {
    auto& minute = *clock.findChild<QTimer*>();
    EXPECT_EQ(minute.intervalAsDuration(), std::chrono::minutes(1));
    minute.setInterval(1);
    const auto hidden = [&] {
        told.clear();
        pass();
        spinFor(std::chrono::milliseconds(30));
        EXPECT_EQ(told.count(), 0) << "nobody sees it";
    };
    hidden();
    clock.setIsShown(true);
    EXPECT_EQ(told.count(), 1) << "at once";
    told.clear();
    pass();
    EXPECT_TRUE(told.wait());
    clock.setIsShown(false);
    hidden();
}

UiTests::UiTests() {
    guiApplication();
    engine_ = std::make_unique<QQmlEngine>();
    prepareForUi(*engine_);
    setDark(false);
    setFontScale(1);
}

UiTests::~UiTests() {
    root_.reset();
    around_.reset();
    component_.reset();
    engine_.reset();
}

AppModel& UiTests::model() {
    if (!model_) {
        model_ = std::make_unique<AppModel>(std::make_unique<ScriptedDesktop>(desktop));
        engine_->addImageProvider("app", new AppIconProvider(*model_));
    }
    return *model_;
}

WindowModels& UiTests::panes() {
    if (!panes_)
        panes_ = std::make_unique<WindowModels>(model());
    return *panes_;
}

QQuickWindow& UiTests::window() {
    if (!window_) {
        component_ =
            std::make_unique<QQmlComponent>(engine_.get(), QUrl("qrc:/qt/qml/Korvanti/Ui/AppWindow.qml"));
        root_.reset(component_->createWithInitialProperties(panes().properties()));
        window_ = qobject_cast<QQuickWindow*>(root_.get());
        if (!window_)
            qFatal("%s", qPrintable(component_->errorString()));
        window_->show();
        window_->requestActivate();
        static_cast<void>(QTest::qWaitForWindowActive(window_));
    }
    return *window_;
}

QQuickItem& UiTests::show(const QString& qml, QSize size, const QVariantMap& properties) {
    around_ = std::make_unique<QQuickWindow>();
    window_ = around_.get();
    component_ = std::make_unique<QQmlComponent>(engine_.get());
    component_->setData(
        ("import QtQuick\nimport QtQuick.Controls.Basic\nimport Korvanti.Ui\n" + qml).toUtf8(),
        QUrl("qrc:/test.qml"));
    root_.reset(component_->createWithInitialProperties(properties));
    auto* const shownItem = qobject_cast<QQuickItem*>(root_.get());
    if (!shownItem)
        qFatal("%s", qPrintable(component_->errorString()));
    shownItem->setParentItem(window_->contentItem());
    window_->setColor(theme().dark() ? QColor(0x12, 0x18, 0x1F) : QColor(0xF7, 0xF9, 0xFB));
    window_->resize(size);
    window_->show();
    window_->requestActivate();
    static_cast<void>(QTest::qWaitForWindowActive(window_));
    return *shownItem;
}

Theme& UiTests::theme() {
    QQmlComponent import(engine_.get()); // Qt knows the module's types from its first import on
    import.setData("import QtQml\nimport Korvanti.Ui\nQtObject {}", QUrl());
    const std::unique_ptr<QObject> importing(import.create());
    return *engine_->singletonInstance<Theme*>(qmlTypeId("Korvanti.Ui", 1, 0, "Theme"));
}

CleanupItem UiTests::cache(const std::string& name, bool recommended) const {
    CleanupItem made;
    mac.home.file("Library/Caches/" + name + "/file", {.text = "12345"});
    made.title = name;
    made.path = mac.home.path("Library/Caches/" + name);
    made.bytes = 31'460'000'000;
    made.recommended = recommended;
    made.safety = Safety::regenerable;
    made.action = CleanupAction::delete_();
    return made;
}

void UiTests::saveReport(std::vector<CleanupItem> items) const {
    ScanReport report;
    report.startedAt = instantFromSeconds(1'700'000'000);
    report.items = std::move(items);
    mac.home.file("Library/Application Support/Korvanti/last-report.json",
                  {.text = prettySortedJson(toJson(report))});
}

QQuickWindow& UiTests::shown() {
    return window_ ? *window_ : window();
}

QQuickItem* UiTests::find(const QString& objectName) {
    return findBelow(shown().contentItem(), objectName);
}

QQuickItem& UiTests::item(const QString& objectName) {
    auto* const found = find(objectName);
    if (!found)
        throw std::runtime_error("no item to be seen is named " + objectName.toStdString());
    return *found;
}

QString UiTests::text(const QString& objectName, const char* property) {
    return item(objectName).property(property).toString();
}

QStringList UiTests::texts(QQuickItem* below) {
    QStringList texts;
    collectTexts(below ? below : shown().contentItem(), texts);
    return texts;
}

QStringList UiTests::unspokenTexts() {
    QStringList texts;
    collectUnspoken(QAccessible::queryAccessibleInterface(&shown()), texts);
    return texts;
}

QPoint UiTests::middle(const QString& objectName) {
    return place(objectName).center().toPoint();
}

QRectF UiTests::place(const QString& objectName) {
    const auto& found = item(objectName);
    return found.mapRectToScene(QRectF(0, 0, found.width(), found.height()));
}

void UiTests::click(const QString& objectName) {
    QTest::mouseClick(&shown(), Qt::LeftButton, Qt::NoModifier, middle(objectName));
    QCoreApplication::processEvents();
}

void UiTests::doubleClick(const QString& objectName) {
    const auto place = middle(objectName);
    for (int click = 0; click < 2; ++click) {
        QTest::mouseClick(&shown(), Qt::LeftButton, Qt::NoModifier, place);
        QTest::qWait(120);
    }
}

void UiTests::hover(const QString& objectName) {
    QTest::mouseMove(&shown(), QPoint(0, 0)); // where the pointer is already, nothing would happen
    QTest::mouseMove(&shown(), middle(objectName));
    QCoreApplication::processEvents();
}

void UiTests::hold(const QString& objectName) {
    QTest::mousePress(&shown(), Qt::LeftButton, Qt::NoModifier, middle(objectName));
}

void UiTests::release(const QString& objectName) {
    QTest::mouseRelease(&shown(), Qt::LeftButton, Qt::NoModifier, middle(objectName));
    QCoreApplication::processEvents();
}

void UiTests::press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    QTest::keyClick(&shown(), key, modifiers);
    QCoreApplication::processEvents();
}

void UiTests::holdKey(Qt::Key key, int milliseconds) {
    const auto send = [&](QEvent::Type type, bool repeats) {
        QKeyEvent event(type, key, Qt::NoModifier, QString(), repeats);
        QCoreApplication::sendEvent(&shown(), &event);
        QTest::qWait(20);
    };
    send(QEvent::KeyPress, false);
    for (const QDeadlineTimer end(milliseconds); !end.hasExpired();) { // as X11 and macOS tell it
        send(QEvent::KeyRelease, true);
        send(QEvent::KeyPress, true);
    }
    send(QEvent::KeyRelease, false);
}

void UiTests::type(const QString& text) {
    for (const auto character : text)
        QTest::keyClick(&shown(), character.toLatin1());
    QCoreApplication::processEvents();
}

void UiTests::settle(int milliseconds) {
    QTest::qWait(milliseconds);
}

void UiTests::readSheet() {
    ASSERT_TRUE(waitFor([&] { return !find("sheetGuard"); }));
    settle();
}

void UiTests::resize(int width, int height) {
    shown().resize(width, height);
    settle();
}

void UiTests::setDark(bool dark) {
    QPalette palette;
    palette.setColor(QPalette::Window, dark ? QColor(30, 30, 30) : QColor(240, 240, 240));
    QGuiApplication::setPalette(palette);
    QCoreApplication::processEvents();
}

void UiTests::setFontScale(double scale) {
    QFont font = QGuiApplication::font();
    font.setPointSizeF(13 * scale);
    QGuiApplication::setFont(font);
    QCoreApplication::processEvents();
}

QImage UiTests::grab(const QString& fileName) {
    const auto image = shown().grabWindow();
    const auto folder = qEnvironmentVariable("KORVANTI_PICTURES");
    if (!folder.isEmpty() && !fileName.isEmpty())
        image.save(folder + "/" + fileName);
    return image;
}

} // namespace korvanti::testing
