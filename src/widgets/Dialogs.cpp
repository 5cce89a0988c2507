#include "widgets/Dialogs.h"

#include "widgets/ScreenRoom.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>

namespace
{

/// The name that the user chooses in a dialog; empty if there is none.
QString chosenFile(QFileDialog& dialog)
{
    screenRoom::keep(&dialog);
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

} // namespace

QString Dialogs::openFileName(QWidget* parent, const QString& caption, const QString& filter)
{
    QFileDialog dialog(parent, caption, QDir::currentPath(), filter);
    dialog.setFileMode(QFileDialog::ExistingFile);
    return chosenFile(dialog);
}

QString Dialogs::saveFileName(QWidget* parent, const QString& caption, const QString& filter)
{
    // The dialog itself adds the suffix, so that its question about an existing file concerns the name that is used.
    QFileDialog dialog(parent, caption, QDir::currentPath(), filter);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QFileInfo(filter).suffix());
    return chosenFile(dialog);
}

void Dialogs::critical(QWidget* parent, const QString& title, const QString& text)
{
    QMessageBox::critical(parent, title, text);
}
