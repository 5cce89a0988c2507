#include "widgets/Dialogs.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>

Dialogs::~Dialogs() = default;

QString Dialogs::openFileName(QWidget* parent, const QString& caption, const QString& filter)
{
    return QFileDialog::getOpenFileName(parent, caption, QDir::currentPath(), filter);
}

QString Dialogs::saveFileName(QWidget* parent, const QString& caption, const QString& filter)
{
    // The dialog itself adds the suffix, so that its question about an existing file concerns the name that is used.
    QFileDialog dialog(parent, caption, QDir::currentPath(), filter);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QFileInfo(filter).suffix());
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

void Dialogs::critical(QWidget* parent, const QString& title, const QString& text)
{
    QMessageBox::critical(parent, title, text);
}
