import QtQuick

// A question over the window, with what follows from yes.
Sheet {
    id: sheet

    property string yes
    property string yesKind: "primary"
    signal confirmed

    function ask() { open(no) }

    buttons: [
        AppButton {
            id: no
            text: "Cancel"
            KeyNavigation.tab: yesButton
            KeyNavigation.backtab: yesButton
            KeyNavigation.right: yesButton
            onClicked: sheet.close()
        },
        AppButton {
            id: yesButton
            text: sheet.yes
            kind: sheet.yesKind
            KeyNavigation.tab: no
            KeyNavigation.backtab: no
            KeyNavigation.left: no
            onClicked: {
                sheet.close()
                sheet.confirmed()
            }
        }
    ]
}
