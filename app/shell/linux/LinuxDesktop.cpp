#include "base/FileDescriptor.h"
#include "base/FileError.h"
#include "cleaning/SafetyGuard.h"
#include "cleaning/Trash.h"
#include "fs/FileContents.h"
#include "fs/PathTools.h"
#include "platform/Platform.h"
#include "shell/Desktop.h"
#include "shell/linux/LoginEntry.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDesktopServices>
#include <QObject>
#include <QSocketNotifier>
#include <QUrl>
#include <algorithm>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <string_view>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>
#include <utility>
#include <variant>
#include <vector>

extern "C" { // which the header leaves out
#include <sys/pidfd.h>
}

namespace korvanti {
namespace {

/// Byte by byte: a name need not be text.
QUrl urlOf(const std::string& path) {
    return QUrl::fromEncoded("file://" + QByteArray::fromStdString(path).toPercentEncoding("/"));
}

/// Where programs that start with the session are named.
std::string loginEntryFile(const std::string& home) {
    const char* const configured = std::getenv("XDG_CONFIG_HOME");
    const std::string folder = configured && *configured == '/' ? configured : home + "/.config";
    return PathTools::joined(folder, "autostart/korvanti.desktop");
}

Desktop::Result resultOf(const std::expected<void, std::error_code>& done, const std::string& path) {
    if (!done)
        return std::unexpected(FileError{.path = path, .code = done.error(), .systemText = {}}.description());
    return {};
}

/// The user's own processes, those begun first in front as a rule. The system's first one is never among
/// them.
std::vector<pid_t> ownProcesses() {
    std::vector<pid_t> processes;
    for (const auto& [name, kind] : PathTools::entries("/proc")) {
        pid_t process = 0;
        const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), process);
        struct stat facts {};
        if (error == std::errc() && end == name.data() + name.size() && process > 1 &&
            ::lstat(("/proc/" + name).c_str(), &facts) == 0 && facts.st_uid == ::getuid())
            processes.push_back(process);
    }
    std::ranges::sort(processes);
    return processes;
}

/// Under the same path a container may have another thing.
bool isTheSameTo(pid_t process, const std::string& path) {
    struct stat here {};
    struct stat there {};
    return ::stat(path.c_str(), &here) == 0 &&
           ::stat(("/proc/" + std::to_string(process) + "/root" + path).c_str(), &there) == 0 &&
           here.st_dev == there.st_dev && here.st_ino == there.st_ino;
}

/// A process of the user whose program lies inside of a bundle. It is held: by its number alone it might be
/// taken for another one that has come after it.
FileDescriptor processInside(const std::string& bundle) {
    const auto place = PathTools::realPath(bundle);
    if (!place || PathTools::pathExtension(*place) != "app")
        return {};
    for (const auto process : ownProcesses()) {
        FileDescriptor held(::pidfd_open(process, 0));
        const auto program = PathTools::linkTarget("/proc/" + std::to_string(process) + "/exe");
        if (held && program && program->starts_with(*place + "/") && isTheSameTo(process, *place))
            return held;
    }
    return {};
}

class LinuxDesktop : public Desktop {
public:
    explicit LinuxDesktop(std::string home) : home_(std::move(home)) {}

    /// There is no file manager to ask that could do more than this program.
    void recycle(const std::string& path, const Answer& answer) override {
        QMetaObject::invokeMethod(
            &here_, [answer, result = trashed(path)] { answer(result); }, Qt::QueuedConnection);
    }

    /// The kernel has something urgent to say about its table whenever it has changed.
    void watchMounts(std::function<void()> changed) override {
        mounts_ = FileDescriptor(::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC));
        if (!mounts_)
            return;
        notifier_ = std::make_unique<QSocketNotifier>(mounts_.get(), QSocketNotifier::Exception);
        QObject::connect(notifier_.get(), &QSocketNotifier::activated, std::move(changed));
    }

    [[nodiscard]] bool isLoginItem() const override {
        const auto entry = FileContents::read(loginEntryFile(home_));
        return entry && LoginEntry::isEnabled(*entry);
    }

    /// One that is switched off stays as a file that says so: it also hides one that the system may have.
    Result setLoginItem(bool enabled) override {
        const auto file = loginEntryFile(home_);
        const std::string folder(PathTools::parent(file));
        if (auto made = resultOf(FileContents::createFolders(folder), folder); !made)
            return made;
        return resultOf(
            FileContents::writeAtomically(file, LoginEntry::text(Platform::executablePath(), enabled)), file);
    }

    /// There is no such page here, and nothing that would need it.
    void openFullDiskAccessSettings(const Answer& answer) override {
        reveal(Platform::executablePath(), answer);
    }

    /// The file manager is asked by message and not waited for. Without one, its folder is all that can be
    /// shown.
    void reveal(const std::string& path, const Answer& answer) override {
        const auto bus = QDBusConnection::sessionBus();
        if (!bus.isConnected()) // a call there would never be answered
            return openFolder(std::string(PathTools::parent(path)), answer);
        auto call =
            QDBusMessage::createMethodCall("org.freedesktop.FileManager1", "/org/freedesktop/FileManager1",
                                           "org.freedesktop.FileManager1", "ShowItems");
        call << QStringList{urlOf(path).toString(QUrl::FullyEncoded)} << QString();
        auto* const watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), &here_);
        QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [this, watcher, path, answer] {
            if (watcher->isError())
                openFolder(std::string(PathTools::parent(path)), answer);
            else
                answer({});
            watcher->deleteLater();
        });
    }

    void openFolder(const std::string& path, const Answer& answer) override {
        if (QDesktopServices::openUrl(urlOf(path)))
            answer({});
        else
            answer(std::unexpected("tidak ada pengelola file yang menjawab."));
    }

    [[nodiscard]] bool isRunning(const InstalledApp& app) const override {
        return static_cast<bool>(processInside(app.path));
    }

    void askToEnd(const InstalledApp& app) override {
        if (const auto process = processInside(app.path))
            ::pidfd_send_signal(process.get(), SIGTERM, nullptr, 0);
    }

    /// A bundle's own picture is in a form that only a Mac reads.
    [[nodiscard]] std::string icon(const std::string& /*bundle*/, int /*pixels*/) const override {
        return {};
    }

private:
    [[nodiscard]] Result trashed(const std::string& path) const {
        const auto admitted = SafetyGuard(home_).admit(path, {.allowApplicationBundle = true});
        if (!admitted)
            return std::unexpected(
                std::visit([](const auto& reason) { return reason.description(); }, admitted.error()));
        if (const auto moved = Trash::move(*admitted, home_); !moved)
            return std::unexpected(moved.error().description());
        return {};
    }

    std::string home_;
    FileDescriptor mounts_;
    std::unique_ptr<QSocketNotifier> notifier_;
    QObject here_; ///< what is still to be answered ends with this
};

} // namespace

std::unique_ptr<Desktop> systemDesktop(const std::string& home) {
    return std::make_unique<LinuxDesktop>(home);
}

} // namespace korvanti
