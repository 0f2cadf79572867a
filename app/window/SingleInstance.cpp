#include "window/SingleInstance.h"

#include "base/SystemCall.h"
#include "fs/FileContents.h"
#include "fs/PathTools.h"
#include "platform/Platform.h"

#include <QElapsedTimer>
#include <QLocalSocket>
#include <cerrno>
#include <sys/file.h>
#include <thread>

namespace korvanti {
namespace {

QString socketIn(const std::string& folder) {
    return QString::fromStdString(PathTools::joined(folder, "socket"));
}

} // namespace

SingleInstance::SingleInstance(const std::string& folder) : folder_(PathTools::joined(folder, "Window")) {
    static_cast<void>(FileContents::createFolders(folder_)); // a failure shows when it is opened
    server_.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&server_, &QLocalServer::newConnection, this, [this] {
        while (auto* const other = server_.nextPendingConnection()) {
            connect(other, &QLocalSocket::disconnected, other, &QObject::deleteLater);
            other->disconnectFromServer(); // which is the answer
        }
        emit showRequested();
    });
}

SingleInstance::Start SingleInstance::start(std::chrono::milliseconds patience) {
    using namespace std::chrono_literals;
    QElapsedTimer waited;
    for (waited.start();; std::this_thread::sleep_for(20ms)) {
        lock_ = FileDescriptor(Platform::openFolder(folder_));
        const bool isLocked =
            lock_ && uninterrupted([&] { return ::flock(lock_.get(), LOCK_EX | LOCK_NB); }) == 0;
        if (!isLocked && (!lock_ || errno != EWOULDBLOCK))
            return Start::goOn;
        if (isLocked) {
            if (!answer()) // one that nobody can ask must not keep the others away
                lock_ = FileDescriptor();
            return Start::goOn;
        }
        if (ask())
            return Start::asked;
        if (waited.hasExpired(patience.count()))
            return Start::noAnswer;
    }
}

bool SingleInstance::answer() {
    const auto socket = socketIn(folder_);
    QLocalServer::removeServer(socket); // what one that crashed has left
    return server_.listen(socket);
}

bool SingleInstance::ask() const {
    constexpr int milliseconds = 2000;
    QLocalSocket socket;
    socket.connectToServer(socketIn(folder_));
    if (!socket.waitForConnected(milliseconds))
        return false;
    if (socket.state() != QLocalSocket::UnconnectedState)
        socket.waitForDisconnected(milliseconds); // a busy one answers later
    return true;
}

} // namespace korvanti
