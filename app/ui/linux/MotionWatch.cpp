#include "ui/MotionWatch.h"

#include "ui/linux/PortalSetting.h"

namespace korvanti {
namespace {

class LinuxMotionWatch : public MotionWatch {
public:
    explicit LinuxMotionWatch(Changed changed)
        : animations_("org.gnome.desktop.interface", "enable-animations",
                      [changed = std::move(changed)](const QVariant& enabled) {
                          if (enabled.userType() == QMetaType::Bool)
                              changed(!enabled.toBool());
                      }) {}

private:
    PortalSetting animations_;
};

} // namespace

std::unique_ptr<MotionWatch> watchMotion(MotionWatch::Changed changed) {
    return std::make_unique<LinuxMotionWatch>(std::move(changed));
}

} // namespace korvanti
