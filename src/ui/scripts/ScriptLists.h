#pragma once

#include "model/GroupRelay.h"
#include "model/ScriptInfo.h"

#include <QList>
#include <QObject>
#include <QSharedPointer>
#include <QString>
#include <QVector>

class QListWidget;
class QListWidgetItem;
class RelayInfo;
class ScriptLabel;

/// The two lists of the first tab: all scripts of the model, and those that may drive the output chosen in the tree,
/// in their order. The user adds and removes scripts between the two, drags the active ones into another order, and
/// chooses the script to edit; the two mirror each other's selection.
///
/// Works on the list widgets of the main window's form. The main window owns the one instance and passes on to it
/// what the widgets report; GUI thread only. Lists are rebuilt from scratch whenever their content changes.
class ScriptLists : public QObject
{
    Q_OBJECT

public:
    ScriptLists(QSharedPointer<RelayInfo> info, QListWidget* allList, QListWidget* activeList,
                QObject* parent = nullptr);

    void rebuildAll();

    /// Shows the scripts of an output, which is from now on the one that is worked on; null empties the list.
    void rebuildActive(const QSharedPointer<RelayInformation>& output);

    void selectFirstActive(); ///< where there is one

    /// After the scripts were read from a unit or a file: rebuilds both lists, repaints them for the script that the
    /// editor holds, selects the first row and reports its script.
    void showNewScripts(const QSharedPointer<RelayInformation>& output, const ScriptInfoPtr& edited);

    /// Repaints all rows; reports the colour of the script that the editor holds.
    void refreshStates(const ScriptInfoPtr& edited);

    /// Double clicks, the end of a drag and the tooltips of the rows.
    bool eventFilter(QObject* watched, QEvent* event) override;

public slots:
    void addSelected();    ///< the scripts selected in the list of all become active for the output
    void removeSelected(); ///< those selected among the active ones no longer are

    void allCurrentChanged(QListWidgetItem* current);
    void activeCurrentChanged(QListWidgetItem* current);
    void allSelectionChanged();
    void activeSelectionChanged();

signals:
    void scriptChosen(const QSharedPointer<ScriptInfo>& script); ///< the script to edit
    void outputChanged();                                        ///< adding or removing was asked for, even in vain
    void renameWanted();                                         ///< of the script that is chosen
    void editedColorChanged(const QString& rgba);                ///< "rgba(r, g, b, a)" of the script in the editor

private:
    /// One row of a list.
    struct ScriptEntry
    {
        QListWidgetItem* item = nullptr;
        ScriptLabel* label = nullptr; ///< the row's item widget
        ScriptInfoPtr script;
    };
    using Entries = QList<ScriptEntry>;

    void setUpKeys();
    void moveSelected(int step);
    QVector<bool> rowsToMove() const;
    void selectRows(const QVector<bool>& selected, int current);
    void rebuildActive();
    ScriptEntry makeEntry(QListWidget* list, const ScriptInfoPtr& script, const QString& text);
    template <typename Part, typename Wanted>
    static const ScriptEntry* entryWith(Part ScriptEntry::*part, const Wanted& wanted, const Entries& entries);

    void mirrorCurrent(const ScriptEntry* entry, const Entries& others, QListWidget* otherList);
    static void mirrorSelection(const Entries& entries, QListWidget* list, const Entries& others,
                                QListWidget* otherList);

    bool doubleClicked(const QObject* label);
    void storeOrder();
    void dropEntries(int firstRow, int lastRow);
    void updateToolTip(const QObject* label);

    QSharedPointer<RelayInfo> relayInfo;
    QListWidget* all;
    QListWidget* active;
    QSharedPointer<RelayInformation> currentRelay; ///< output chosen in the tree
    Entries allScriptEntries;
    Entries activeScriptEntries;
    bool isActiveMirroring = false; ///< what is selected there was selected in the list of all
};
