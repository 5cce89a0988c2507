#pragma once

#include "UserModel.h"
#include "simulator/UnitState.h"
#include "support/WindowOverUnit.h"

#include <QComboBox>
#include <QList>
#include <QString>

class QAbstractButton;
class QListWidget;
class QTreeWidget;
class QTreeWidgetItem;
class QWidget;

/// Does in the real window, over the simulated unit, what a user does there, by the widgets and actions that are there
/// for it. The window stays the same for all sequences of operations.
class WindowUser
{
public:
    /// Terminals as the window finds them when it starts; no sequence changes them.
    static QVector<UnitTerminal> terminals();

    WindowUser();

    /// Whether the window has got through its first reading.
    bool isReady() const
    {
        return isFirstReadingOver;
    }

    /// Begins a sequence: the unit remembers this, and the window has read it.
    void begin(const UnitState& state);

    void selectTerminal(int terminal) const;
    void selectOutput(int terminal, int output) const;
    void renameTerminal(int terminal, const QString& name) const;
    void renameOutput(int terminal, int output, const QString& name) const;
    void setStartState(int terminal, int output, bool on) const;
    void clickReturn(int terminal, int output) const;
    void addTerminal(int address, const QString& name, const QStringList& outputs) const;
    void hideTerminal(int terminal) const;
    void hideNotReported() const;

    void chooseScript(int number) const;
    void addScripts(const QList<int>& numbers) const;
    void removeScripts(const QList<int>& rows) const;
    void moveScripts(const QList<int>& rows, int step) const;

    void typeNameOfScript(const QString& name) const;
    void chooseRow(const char* combo, int row) const;
    void click(const QString& button) const;
    void clickFault(int row) const;
    void setTime(const char* frame, const char* field, int value) const;
    void writeComment(const QString& comment) const;

    // These fail the case if the window doesn't say that they went well.
    void read();
    void write();
    void save();
    void load();
    /// Outputs and scripts only.
    void changeUnit(const UnitState& state);

    /// What is otherwise in the window than in the account of it; nothing if all that is looked at is well.
    QString faultOfWindow(const UserModel& expected) const;
    /// Likewise in the file or the unit, once the window has saved or written.
    QString faultOfFile(const UserModel& expected) const;
    QString faultOfUnit(const UserModel& expected) const;

private:
    QTreeWidgetItem* item(int terminal, int output = -1) const;
    template <typename Widget>
    Widget* part(QTreeWidgetItem* item, const char* name) const;
    void rename(QTreeWidgetItem* item, const QString& name) const;
    void chooseFromMenu(QTreeWidgetItem* item, int action) const;
    static void selectRows(QListWidget* list, const QList<int>& rows);
    bool hasSaid(const QString& result) const;
    QString shownNames(const UserModel& expected) const;

    WindowOverUnit over;
    bool isFirstReadingOver;
    QTreeWidget* tree;
    QListWidget* allScripts;
    QListWidget* activeScripts;
};
