#pragma once

#include "base/FileDescriptor.h"

#include <QLocalServer>
#include <QObject>
#include <chrono>
#include <string>

namespace korvanti {

/// Keeps a user's programs down to one: two would clean the same things and write over each other's report.
/// The lock is the system's, on a folder, and goes with the process, however that ends.
class SingleInstance : public QObject {
    Q_OBJECT

public:
    /// `folder` is the user's own. It gets one of ours, which is locked and holds the socket by which later
    /// ones ask: others lock `folder` itself.
    explicit SingleInstance(const std::string& folder);

    enum class Start {
        goOn,     ///< this is the only one, or nothing tells
        asked,    ///< another one runs and has been asked to show itself
        noAnswer, ///< another one runs and didn't answer in time
    };
    /// Blocks while another one is just beginning or ending.
    [[nodiscard]] Start start(std::chrono::milliseconds patience = std::chrono::seconds(10));

    /// From now on nobody is told that this one would show itself. It stays the only one.
    void stopAnswering() { server_.close(); }

signals:
    void showRequested(); ///< by another one that has just been started

private:
    [[nodiscard]] bool answer();
    [[nodiscard]] bool ask() const;

    std::string folder_; ///< ours
    FileDescriptor lock_;
    QLocalServer server_;
};

} // namespace korvanti
