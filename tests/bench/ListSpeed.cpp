// Shows the window with a saved report of many items, without a screen and drawn by the processor, and prints
// what the list takes: "resetMicroseconds" (filter changed until painted), "keystrokeMicroseconds" (the
// longest of a word typed), "slowestFrameMicroseconds" and "framesLate" of a scroll through the list at 30
// frames a second.

#include "SavedReport.h"
#include "platform/Platform.h"
#include "shell/AppModel.h"
#include "ui/Ui.h"
#include "ui/WindowModels.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <QtQml/QQmlExtensionPlugin>
#include <algorithm>
#include <cstdio>
#include <cstdlib>

Q_IMPORT_QML_PLUGIN(Korvanti_UiPlugin)

namespace {

QQuickItem* findBelow(QQuickItem* item, const QString& name) {
    if (item->objectName() == name)
        return item;
    for (auto* child : item->childItems()) {
        if (auto* const found = findBelow(child, name))
            return found;
    }
    return nullptr;
}

} // namespace

int main(int argc, char** argv) {
    using namespace korvanti;
    if (argc != 3) {
        std::fputs("usage: korvanti_list_speed FOLDER ITEMS\n", stderr);
        return 2;
    }
    ::setenv("HOME", argv[1], 1);
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    ::setenv("QT_QUICK_BACKEND", "software", 1);
    if (!bench::saveReport(static_cast<std::size_t>(std::atoll(argv[2])))) {
        std::fprintf(stderr, "%s: no report can be saved there\n", argv[1]);
        return 1;
    }
    const QGuiApplication application(argc, argv);
    AppModel model(systemDesktop(Platform::homeFolder()));
    WindowModels panes(model);
    model.setPane(Pane::cleanup);
    QQmlEngine engine;
    prepareForUi(engine);
    QQmlComponent component(&engine, QUrl("qrc:/qt/qml/Korvanti/Ui/AppWindow.qml"));
    const std::unique_ptr<QObject> root(component.createWithInitialProperties(panes.properties()));
    auto* const window = qobject_cast<QQuickWindow*>(root.get());
    if (window)
        window->show();
    if (!window || !QTest::qWaitForWindowExposed(window)) {
        std::fprintf(stderr, "no window: %s\n", qPrintable(component.errorString()));
        return 1;
    }
    QTest::qWait(500);

    int painted = 0;
    QObject::connect(window, &QQuickWindow::frameSwapped, window, [&] { ++painted; });
    const auto untilPainted = [&](const auto& act) {
        const int before = painted;
        QElapsedTimer timer;
        timer.start();
        act();
        while (painted == before && timer.elapsed() < 5000)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 1);
        return timer.nsecsElapsed() / 1000;
    };

    qint64 reset = 0;
    for (const auto filter : {ItemFilter::all, ItemFilter::deletable, ItemFilter::all})
        reset = std::max(reset, untilPainted([&] { model.setFilter(filter); }));
    std::printf("resetMicroseconds %lld\n", static_cast<long long>(reset));

    QTest::keyClick(window, Qt::Key_F, Qt::ControlModifier);
    qint64 keystroke = 0;
    for (const char key : {'p', 'r', 'o', 'y', 'e', 'k', '-', '7'})
        keystroke = std::max(keystroke, untilPainted([&] { QTest::keyClick(window, key); }));
    if (model.search() != "proyek-7") {
        std::fprintf(stderr, "the search holds %s\n", model.search().c_str());
        return 1;
    }
    std::printf("keystrokeMicroseconds %lld\n", static_cast<long long>(keystroke));

    model.setSearch("");
    QTest::qWait(200);
    auto* const list = findBelow(window->contentItem(), "items");
    if (!list) {
        std::fputs("no list\n", stderr);
        return 1;
    }
    constexpr int frames = 150;
    constexpr qint64 frameMicroseconds = 33'333;
    qint64 slowest = 0;
    int late = 0;
    for (int step = 0; step < frames; ++step) {
        const auto took =
            untilPainted([&] { list->setProperty("contentY", list->property("contentY").toReal() + 120); });
        slowest = std::max(slowest, took);
        late += took > frameMicroseconds ? 1 : 0;
    }
    std::printf("slowestFrameMicroseconds %lld\nframesLate %d\n", static_cast<long long>(slowest), late);
    return 0;
}
