#include "frame/window/dialogs.h"

#include "platform/platform.h"

#include <QColorDialog>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QLayout>
#include <QTreeView>
#include <QUrl>

namespace {

constexpr QSize fileDialogSize(600, 435); // pixels, as the window
constexpr int nameColumn = 0;
constexpr int typeColumn = 2; // of the list of files: "Folder", "txt File"

// Qt's classes within its colour dialog have no headers.
constexpr const char *colourField = "QColorPicker";
constexpr const char *brightnessBar = "QColorLuminancePicker";
constexpr const char *pickedColour = "QColorShowLabel";
constexpr QSize colourFieldSize(222, 160); // pixels
constexpr int brightnessBarWidth = 36;     // pixels
constexpr int pickedColourWidth = 36;      // pixels

/** Of a file dialog's drives those that have gone since they were put there leave again: Qt keeps
 *  the side bar for the next dialog. */
void offerRemovableDrives(QFileDialog *dialog)
{
    QList<QUrl> places;
    for (const QUrl &place : dialog->sidebarUrls()) {
        if (!platform::isRemovableDrivePath(place.toLocalFile()))
            places << place;
    }
    for (const QString &drive : platform::removableDrives())
        places << QUrl::fromLocalFile(drive);
    dialog->setSidebarUrls(places);
}

} // namespace

void fitFileDialog(QFileDialog *dialog)
{
    auto *files = dialog->findChild<QTreeView *>(QStringLiteral("treeView"));
    if (!files)
        return;
    // The name needs the room, and it tells the type.
    files->setColumnHidden(typeColumn, true);
    files->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    files->header()->setSectionResizeMode(nameColumn, QHeaderView::Stretch);
    offerRemovableDrives(dialog);
    // Qt's next dialog begins where this one is, and a path may have been typed.
    QObject::connect(dialog, &QFileDialog::fileSelected, dialog,
        [dialog](const QString &file) { dialog->setDirectory(QFileInfo(file).absolutePath()); });
    dialog->setSizeGripEnabled(false); // too small to be gripped
    dialog->resize(fileDialogSize);
}

void fitColorDialog(QColorDialog *dialog)
{
    if (!dialog->layout())
        return;
    for (QWidget *part : dialog->findChildren<QWidget *>()) {
        part->ensurePolished(); // or its size would change after the dialog's
        if (part->inherits(colourField))
            part->setFixedSize(colourFieldSize);
        else if (part->inherits(brightnessBar))
            part->setFixedWidth(brightnessBarWidth);
        else if (part->inherits(pickedColour))
            part->setFixedWidth(pickedColourWidth);
    }
    dialog->layout()->activate();
}
