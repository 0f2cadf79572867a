#pragma once

#include <QDBusVariant>
#include <QObject>
#include <QString>
#include <QVariant>
#include <functional>

namespace korvanti {

/// One of the desktop's settings, as its portal tells it to every kind of program.
class PortalSetting : public QObject {
    Q_OBJECT

public:
    using Told = std::function<void(const QVariant&)>;

    /// `told` is called when the answer is there and after each change. Without a portal it never is.
    PortalSetting(QString group, QString key, Told told);

private slots:
    void change(const QString& group, const QString& key, const QDBusVariant& value);

private:
    QString group_;
    QString key_;
    Told told_;
};

} // namespace korvanti
