import QtQuick.Dialogs

FolderDialog {
    currentFolder: house.homeFolder
}
