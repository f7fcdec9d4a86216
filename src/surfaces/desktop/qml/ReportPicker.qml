import QtQuick.Dialogs

FileDialog {
    title: "Export Diagnostics"
    currentFolder: house.homeFolder
    fileMode: FileDialog.SaveFile
    currentFile: house.homeFolder + "/Hearthkeep Diagnostics.txt"
    defaultSuffix: "txt"
    nameFilters: ["Text (*.txt)"]
}
