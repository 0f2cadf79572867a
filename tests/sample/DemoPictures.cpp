#include "platform/Platform.h"
#include "shell/AppModel.h"
#include "shell/Desktop.h"
#include "shell/Pane.h"
#include "start/ProcessStart.h"
#include "ui/Ui.h"
#include "ui/WindowModels.h"

#include <QColor>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QPalette>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QString>
#include <QThread>
#include <QtQml/QQmlExtensionPlugin>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>

Q_IMPORT_QML_PLUGIN(Korvanti_UiPlugin)

/// korvanti-demo-pictures FOLDER: the window over this Mac without a screen, scanned, each of its panes light
/// and dark as a PNG file.
namespace {

using namespace korvanti;

/// Lets events happen until something is true, for a minute at the most, and for a while after that.
bool settle(const std::function<bool()>& isTrue) {
    constexpr int longest = 60'000;
    constexpr int motion = 700; // what moves has come to its end
    QElapsedTimer timer;
    timer.start();
    const auto goOn = [&](const std::function<bool()>& until, qint64 end) {
        while (!until() && timer.elapsed() < end) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
            QThread::msleep(1);
        }
        return until();
    };
    if (!goOn(isTrue, longest))
        return false;
    goOn([] { return false; }, timer.elapsed() + motion);
    return isTrue();
}

void setDark(bool dark) {
    QPalette palette;
    palette.setColor(QPalette::Window, dark ? QColor(30, 30, 30) : QColor(240, 240, 240));
    QGuiApplication::setPalette(palette);
}

int takePictures(const QString& folder) {
    QQmlEngine engine;
    prepareForUi(engine);
    AppModel model(systemDesktop(Platform::homeFolder()));
    WindowModels panes(model);
    QQmlComponent component(&engine, QUrl("qrc:/qt/qml/Korvanti/Ui/AppWindow.qml"));
    const std::unique_ptr<QObject> made(component.createWithInitialProperties(panes.properties()));
    auto* const window = qobject_cast<QQuickWindow*>(made.get());
    if (!window) {
        std::fprintf(stderr, "%s\n", qPrintable(component.errorString()));
        return 1;
    }
    window->show(); // without a report, it scans
    const auto isIdle = [&] {
        return model.report() && !model.isScanning() && !model.isMapping() && !model.appsLoading() &&
               !model.volumes().empty();
    };
    for (const bool dark : {false, true}) {
        setDark(dark);
        for (const auto pane : allCases<Pane>) {
            model.setPane(pane);
            const auto file = folder + "/" + QString::fromStdString(std::string(rawValue(pane))) +
                              (dark ? "-dark.png" : "-light.png");
            if (!settle(isIdle) || !window->grabWindow().save(file)) {
                std::fprintf(stderr, "No picture: %s\n", qPrintable(file));
                return 1;
            }
        }
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    prepareProcess();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    QGuiApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("usage: korvanti-demo-pictures FOLDER\n", stderr);
        return 2;
    }
    const int status = takePictures(argv[1]);
    std::fflush(nullptr);
    std::_Exit(status); // as the program ends: what only reads may still be at it
}
