#pragma once

#include <QFocusEvent>
#include <QQuickItem>
#include <qqmlregistration.h>

namespace korvanti {

/// A row of a list, which is told apart by how the focus came to it.
class RowItem : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT

public:
    using QQuickItem::QQuickItem;

signals:
    void reachedByKey();

protected:
    void focusInEvent(QFocusEvent* event) override {
        QQuickItem::focusInEvent(event);
        if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason)
            emit reachedByKey();
    }
};

} // namespace korvanti
