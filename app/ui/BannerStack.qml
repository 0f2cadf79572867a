import QtQuick
import Korvanti.Ui

/// What the program has to say, above the pane.
Column {
    id: root

    required property FrameModel model

    Banner {
        objectName: "busyBanner"
        width: root.width
        text: root.model.busyMessage
        tint: Brand.accent
        dismissable: false
    }
    Banner {
        objectName: "errorBanner"
        width: root.width
        text: root.model.errorMessage
        tint: Brand.coral
        symbol: "exclamationmark.triangle.fill"
        onDismissed: root.model.dismissError()
    }
    Banner {
        objectName: "noticeBanner"
        width: root.width
        text: root.model.noticeMessage
        tint: Brand.green
        symbol: "checkmark.circle.fill"
        onDismissed: root.model.dismissNotice()
    }
}
