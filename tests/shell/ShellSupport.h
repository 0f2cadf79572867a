#pragma once

#include "cleaning/SafetyGuard.h"
#include "shell/AppModel.h"
#include "shell/Desktop.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>
#include <chrono>
#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace korvanti::testing {

/// The application object that Qt needs, made on first use.
inline QCoreApplication& application() {
    static int count = 1;
    static char name[] = "tests";
    static char* arguments[] = {name, nullptr};
    static QCoreApplication application(count, arguments);
    return application;
}

/// Lets events happen until something is true, for half a minute at the most.
[[nodiscard]] inline bool waitFor(const std::function<bool()>& isTrue) {
    QElapsedTimer timer;
    timer.start();
    while (!isTrue() && timer.elapsed() < 30'000) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(1);
    }
    return isTrue();
}

/// Lets events happen for a while: for what must not happen.
inline void spinFor(std::chrono::milliseconds time) {
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < time.count()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(1);
    }
}

/// A desktop that does what the test says and remembers what it was asked.
class ScriptedDesktop : public Desktop {
public:
    struct Script {
        std::deque<Result> recycling; ///< the next answers; success when there is none
        std::function<void()> whileRecycling;
        Result loginItem;
        Result opening; ///< of folders, and of the settings
        bool isLoginItem = false;
        std::vector<std::string> recycled;
        std::vector<std::string> revealed;
        std::vector<std::string> opened;
        std::vector<bool> loginItems;
        int settingsOpened = 0;
        std::shared_ptr<Desktop> system; ///< if any, it is asked what is open
        std::set<std::string> running;   ///< bundles that are open otherwise
        std::vector<std::string> askedToEnd;
        std::map<std::string, std::string> icons; ///< by bundle
        std::function<void()> mountsChanged;
    };

    explicit ScriptedDesktop(Script& script) : script_(script) {}

    void recycle(const std::string& path, const Answer& answer) override {
        script_.recycled.push_back(path);
        Result result;
        if (!script_.recycling.empty()) {
            result = script_.recycling.front();
            script_.recycling.pop_front();
        }
        if (result)
            std::filesystem::remove_all(path);
        if (script_.whileRecycling)
            script_.whileRecycling();
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [answer, result] { answer(result); }, Qt::QueuedConnection);
    }
    void watchMounts(std::function<void()> changed) override { script_.mountsChanged = std::move(changed); }
    [[nodiscard]] bool isLoginItem() const override { return script_.isLoginItem; }
    Result setLoginItem(bool enabled) override {
        script_.loginItems.push_back(enabled);
        return script_.loginItem;
    }
    void openFullDiskAccessSettings(const Answer& answer) override {
        ++script_.settingsOpened;
        answer(script_.opening);
    }
    void reveal(const std::string& path, const Answer& answer) override {
        script_.revealed.push_back(path);
        answer(script_.opening);
    }
    void openFolder(const std::string& path, const Answer& answer) override {
        script_.opened.push_back(path);
        answer(script_.opening);
    }
    [[nodiscard]] bool isRunning(const InstalledApp& app) const override {
        return script_.system ? script_.system->isRunning(app) : script_.running.contains(app.path);
    }
    void askToEnd(const InstalledApp& app) override {
        script_.askedToEnd.push_back(app.path);
        if (script_.system)
            script_.system->askToEnd(app);
    }
    [[nodiscard]] std::string icon(const std::string& bundle, int /*pixels*/) const override {
        const auto found = script_.icons.find(bundle);
        return found == script_.icons.end() ? std::string() : found->second;
    }

private:
    Script& script_;
};

} // namespace korvanti::testing
