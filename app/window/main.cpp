#include "analysis/DiskInspector.h"
#include "platform/Platform.h"
#include "settings/AppPaths.h"
#include "start/ProcessStart.h"
#include "window/CommandMenu.h"
#include "window/KorvantiApp.h"
#include "window/SingleInstance.h"

#include <QApplication>
#include <QIcon>
#include <QtQml/QQmlExtensionPlugin>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

Q_IMPORT_QML_PLUGIN(Korvanti_UiPlugin)

namespace {

/// Qt would end the process as after a crash, for want of a screen above all.
void report(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, message)));
    if (type == QtFatalMsg) {
        std::fputs("Jendela Korvanti tidak bisa dibuka: tidak ada layar yang bisa dipakai.\n"
                   "Jalankan `korvanti --report` untuk laporan di terminal.\n",
                   stderr);
        std::_Exit(1);
    }
}

/// Mesa maps its cache of shaders before it has blocks on the disk; without room for them the kernel ends the
/// process at the first touch, just when it is needed most.
void spareAFullDisk() {
    constexpr std::int64_t roomForShaders = 64'000'000;
    if (korvanti::DiskInspector::freeSpace(korvanti::Platform::homeFolder()).available < roomForShaders)
        ::setenv("MESA_SHADER_CACHE_DISABLE", "true", 0);
}

} // namespace

int main(int argc, char** argv) {
    korvanti::prepareProcess();
    spareAFullDisk();
    qInstallMessageHandler(report);
    QApplication application(argc, argv);
    QApplication::setApplicationName("Korvanti");
    QApplication::setDesktopFileName("korvanti"); // by which a desktop finds name and icon
    QApplication::setQuitOnLastWindowClosed(false);
    QIcon icon(":/qt/qml/Korvanti/Ui/art/application.svg");
    icon.addPixmap(QIcon(":/qt/qml/Korvanti/Ui/art/application-16.svg").pixmap(16));
    QApplication::setWindowIcon(icon);

    korvanti::SingleInstance instance(korvanti::AppPaths::support());
    switch (instance.start()) {
    case korvanti::SingleInstance::Start::goOn:
        break;
    case korvanti::SingleInstance::Start::asked:
        return 0;
    case korvanti::SingleInstance::Start::noAnswer:
        std::fputs("Korvanti sudah berjalan, tetapi jendelanya tidak bisa dibuka.\n", stderr);
        return 1;
    }

    korvanti::KorvantiApp app(korvanti::systemDesktop(korvanti::Platform::homeFolder()));
    const korvanti::CommandMenu menu(app.frame());
    // Not `quit`, which asks first.
    QObject::connect(&app, &korvanti::KorvantiApp::finished, [] { QApplication::exit(0); });
    if (!app.open())
        return 1;
    QObject::connect(&instance, &korvanti::SingleInstance::showRequested, &app,
                     &korvanti::KorvantiApp::showWindow);
    const int status = QApplication::exec();
    instance.stopAnswering();
    app.awaitEnd();
    std::fflush(nullptr);
    std::_Exit(status); // what only reads may still be at it
}
