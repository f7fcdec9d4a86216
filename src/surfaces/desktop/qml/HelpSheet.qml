import QtQuick
import Hearthkeep.DesignSystem

// What other programs have in their menus: about, help, privacy, the report, and the way out.
Sheet {
    id: help

    readonly property var pages: [
        { title: "Hearthkeep Help", text: "Use Overview for live health, Storage to scan and review space, Memory to inspect apps, Ports & Projects for local development activity, and Build Cleanup for revalidated Trash-first cleanup. Full Disk Access is optional and requested only from Storage when you choose Complete Scan." },
        { title: "Hearthkeep Privacy", text: "Monitoring and scans run locally. Hearthkeep has no analytics and does not upload file names, paths, telemetry, or diagnostics. A diagnostic report is created only when you explicitly export one." },
        { title: "Hearthkeep 0.9", text: "Personal Studio design, wardrobe storage views, Folded and Hanging notch shelves, demand-driven monitoring, cleanup transactions and restore, native Liquid Glass, and signed-update infrastructure." },
        { title: "About Hearthkeep", text: "A local-first personal studio for understanding and safely tending your Mac." }
    ]
    property int page: 0

    function ask() {
        page = 0
        open(done)
    }

    widest: 640
    title: pages[page].title
    Segments {
        names: ["Help", "Privacy", "Release Notes", "About"]
        current: help.page
        onPicked: index => { help.page = index }
    }
    Line { width: parent.width; text: help.pages[help.page].text; wrapMode: Text.Wrap; elide: Text.ElideNone }
    Line {
        width: parent.width
        visible: help.page === 0
        isQuiet: true
        wrapMode: Text.Wrap
        elide: Text.ElideNone
        text: "Ctrl+1 to Ctrl+6 go to the rooms, Ctrl+K searches, Ctrl+Z takes the last move back. Delete moves what is chosen to the Trash, asked once. Closing the window leaves Hearthkeep running; start it again to see it, or Ctrl+Q to quit."
    }
    buttons: [
        AppButton {
            text: "Export Diagnostics…"
            onClicked: report.open()
        },
        AppButton {
            text: "Quit Hearthkeep"
            onClicked: Qt.quit()
        },
        AppButton {
            id: done
            text: "Close"
            kind: "primary"
            onClicked: help.close()
        }
    ]
    Picker {
        id: report
        source: "ReportPicker.qml"
        onPicked: file => house.exportDiagnostics(file)
        onFailed: house.say("This desktop has no dialog to choose a file with.")
    }
}
