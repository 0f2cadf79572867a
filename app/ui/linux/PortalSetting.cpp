#include "ui/linux/PortalSetting.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <utility>

namespace korvanti {
namespace {

constexpr auto service = "org.freedesktop.portal.Desktop";
constexpr auto path = "/org/freedesktop/portal/desktop";
constexpr auto settings = "org.freedesktop.portal.Settings";

} // namespace

PortalSetting::PortalSetting(QString group, QString key, Told told)
    : group_(std::move(group)), key_(std::move(key)), told_(std::move(told)) {
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    qRegisterMetaType<QDBusVariant>(); // or the slot is not found for the first signals
    bus.connect(service, path, settings, "SettingChanged", this,
                SLOT(change(QString, QString, QDBusVariant)));
    auto call = QDBusMessage::createMethodCall(service, path, settings, "Read");
    call << group_ << key_;
    auto* const watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        if (!reply.isError())
            change(group_, key_, reply.value());
        watcher->deleteLater();
    });
}

void PortalSetting::change(const QString& group, const QString& key, const QDBusVariant& value) {
    if (group != group_ || key != key_)
        return;
    // The portal's older call wraps its answer twice.
    const auto plain = value.variant();
    told_(plain.userType() == qMetaTypeId<QDBusVariant>() ? plain.value<QDBusVariant>().variant() : plain);
}

} // namespace korvanti
