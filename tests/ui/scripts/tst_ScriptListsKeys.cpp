#include "model/RelayInfo.h"
#include "ui/scripts/ScriptLists.h"

#include <QApplication>
#include <QClipboard>
#include <QListWidget>
#include <QSignalSpy>
#include <QtTest>

#include <memory>
#include <utility>

/// The keys of the two lists.
class tst_ScriptListsKeys : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void insertAddsTheSelectedScripts();
    void deleteRemovesTheSelectedScripts();
    void deleteInTheListOfAllRemovesTheSameScripts();
    void altUpAndDownMoveTheChosenScript();
    void severalSelectedScriptsMoveTogether();
    void scriptsAtTheEndStayThere();
    void theOrderOfAllScriptsCantBeChanged();
    void f2AsksForTheName();
    void withoutAnOutputNothingMoves();
    void ofAScriptThatStandsTwiceOnlyTheChosenRowMoves();
    void ofAScriptThatTheOtherListSelectsTwiceOneRowMoves();
    void chosenInItsOwnListBothRowsOfAScriptStay();
    void ctrlCCopiesTheSelectedRows();

private:
    QList<int> active() const;
    QList<int> selected() const;
    void activate(const QList<int>& numbers);
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }

    QSharedPointer<RelayInfo> info;
    RelayInformationPtr output;
    std::unique_ptr<QWidget> window;
    QListWidget* allList = nullptr;
    QListWidget* activeList = nullptr;
    std::unique_ptr<ScriptLists> lists;
};

void tst_ScriptListsKeys::init()
{
    info = QSharedPointer<RelayInfo>::create();
    output = info->groups().first()->outputs.first();
    window = std::make_unique<QWidget>();
    allList = new QListWidget(window.get());
    activeList = new QListWidget(window.get());
    window->resize(420, 820);
    activeList->setGeometry(0, 0, 200, 800);
    allList->setGeometry(210, 0, 200, 800);
    lists = std::make_unique<ScriptLists>(info, allList, activeList);
    connect(allList, &QListWidget::currentItemChanged, lists.get(), &ScriptLists::allCurrentChanged);
    connect(allList, &QListWidget::itemSelectionChanged, lists.get(), &ScriptLists::allSelectionChanged);
    connect(activeList, &QListWidget::currentItemChanged, lists.get(), &ScriptLists::activeCurrentChanged);
    connect(activeList, &QListWidget::itemSelectionChanged, lists.get(), &ScriptLists::activeSelectionChanged);
    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    lists->rebuildAll();
    lists->rebuildActive(output);
}

void tst_ScriptListsKeys::cleanup()
{
    lists.reset();
    window.reset();
    info.clear();
}

/// The numbers of the active scripts in the model.
QList<int> tst_ScriptListsKeys::active() const
{
    QList<int> numbers;
    for (const ScriptInfoPtr& script : std::as_const(output->activatedScripts)) {
        numbers.append(script->number);
    }
    return numbers;
}

QList<int> tst_ScriptListsKeys::selected() const
{
    QList<int> rows;
    for (int row = 0; row < activeList->count(); ++row) {
        if (activeList->item(row)->isSelected()) {
            rows.append(row);
        }
    }
    return rows;
}

void tst_ScriptListsKeys::activate(const QList<int>& numbers)
{
    for (const int number : numbers) {
        output->activatedScripts.append(info->findScript(quint8(number)));
    }
    lists->rebuildActive(output);
}

void tst_ScriptListsKeys::insertAddsTheSelectedScripts()
{
    allList->setFocus();
    allList->setCurrentRow(4);
    press(Qt::Key_Down, Qt::ShiftModifier);
    press(Qt::Key_Insert);
    QCOMPARE(active(), QList<int>({4, 5}));
    QCOMPARE(QApplication::focusWidget(), allList);
}

void tst_ScriptListsKeys::deleteRemovesTheSelectedScripts()
{
    activate({3, 7, 9});
    activeList->setFocus();
    activeList->setCurrentRow(1);
    press(Qt::Key_Delete);
    QCOMPARE(active(), QList<int>({3, 9}));
}

void tst_ScriptListsKeys::deleteInTheListOfAllRemovesTheSameScripts()
{
    activate({3, 7});
    allList->setFocus();
    allList->setCurrentRow(7);
    press(Qt::Key_Delete);
    QCOMPARE(active(), QList<int>({3}));
    press(Qt::Key_Delete);
    QCOMPARE(active(), QList<int>({3}));
}

void tst_ScriptListsKeys::altUpAndDownMoveTheChosenScript()
{
    activate({3, 7, 9});
    activeList->setFocus();
    activeList->setCurrentRow(2);
    press(Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(active(), QList<int>({3, 9, 7}));
    QCOMPARE(activeList->currentRow(), 1);
    QCOMPARE(selected(), QList<int>({1}));
    press(Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(active(), QList<int>({9, 3, 7}));
    press(Qt::Key_Down, Qt::AltModifier);
    QCOMPARE(active(), QList<int>({3, 9, 7}));
    QCOMPARE(QApplication::focusWidget(), activeList);
}

void tst_ScriptListsKeys::severalSelectedScriptsMoveTogether()
{
    activate({1, 2, 3, 4, 5});
    activeList->setFocus();
    activeList->setCurrentRow(1);
    press(Qt::Key_Down, Qt::ShiftModifier);
    press(Qt::Key_Down, Qt::AltModifier);
    QCOMPARE(active(), QList<int>({1, 4, 2, 3, 5}));
    QCOMPARE(selected(), QList<int>({2, 3}));
}

void tst_ScriptListsKeys::scriptsAtTheEndStayThere()
{
    activate({1, 2, 3});
    activeList->setFocus();
    activeList->setCurrentRow(0);
    press(Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(active(), QList<int>({1, 2, 3}));
    // One that stands on top doesn't let the next one pass.
    press(Qt::Key_Down, Qt::ShiftModifier);
    press(Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(active(), QList<int>({1, 2, 3}));
}

void tst_ScriptListsKeys::theOrderOfAllScriptsCantBeChanged()
{
    activate({3, 7});
    allList->setFocus();
    allList->setCurrentRow(7);
    press(Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(active(), QList<int>({3, 7}));
}

void tst_ScriptListsKeys::f2AsksForTheName()
{
    const QSignalSpy asked(lists.get(), &ScriptLists::renameWanted);
    allList->setFocus();
    press(Qt::Key_F2);
    activeList->setFocus();
    press(Qt::Key_F2);
    QCOMPARE(asked.size(), 2);
}

void tst_ScriptListsKeys::withoutAnOutputNothingMoves()
{
    lists->rebuildActive(RelayInformationPtr());
    activeList->setFocus();
    press(Qt::Key_Up, Qt::AltModifier);
    press(Qt::Key_Delete);
    allList->setFocus();
    allList->setCurrentRow(1);
    press(Qt::Key_Insert);
    QCOMPARE(active(), QList<int>());
}

void tst_ScriptListsKeys::ofAScriptThatStandsTwiceOnlyTheChosenRowMoves()
{
    activate({3, 7, 9, 3});
    activeList->setFocus();
    activeList->setCurrentRow(3);
    QCOMPARE(selected(), QList<int>({3}));
    press(Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(active(), QList<int>({3, 7, 3, 9}));
    QCOMPARE(selected(), QList<int>({2}));
    QCOMPARE(activeList->currentRow(), 2);
    press(Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(active(), QList<int>({3, 3, 7, 9}));
    press(Qt::Key_Down, Qt::AltModifier);
    press(Qt::Key_Down, Qt::AltModifier);
    QCOMPARE(active(), QList<int>({3, 7, 9, 3}));
    QCOMPARE(activeList->currentRow(), 3);
}

void tst_ScriptListsKeys::ofAScriptThatTheOtherListSelectsTwiceOneRowMoves()
{
    activate({7, 3, 9, 3});
    allList->setFocus();
    allList->setCurrentRow(3);
    QCOMPARE(selected(), QList<int>({1, 3}));
    QCOMPARE(activeList->currentRow(), 1);
    activeList->setFocus();
    press(Qt::Key_Down, Qt::AltModifier);
    QCOMPARE(active(), QList<int>({7, 9, 3, 3}));
    QCOMPARE(selected(), QList<int>({2}));
}

void tst_ScriptListsKeys::chosenInItsOwnListBothRowsOfAScriptStay()
{
    activate({3, 7, 3});
    activeList->setFocus();
    activeList->selectAll();
    press(Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(active(), QList<int>({3, 7, 3}));
    QCOMPARE(selected(), QList<int>({0, 1, 2}));
}

void tst_ScriptListsKeys::ctrlCCopiesTheSelectedRows()
{
    activate({3, 7, 9});
    info->findScript(7)->name = QStringLiteral("Fan & more");
    lists->rebuildAll();
    lists->rebuildActive(output);
    QGuiApplication::clipboard()->clear();
    activeList->setFocus();
    activeList->setCurrentRow(1);
    press(Qt::Key_Down, Qt::ShiftModifier);
    press(Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("8. Fan & more\n10. Script"));
    allList->setFocus();
    allList->setCurrentRow(0, QItemSelectionModel::ClearAndSelect); // the key before still counts
    press(Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("1. Script"));
}

QTEST_MAIN(tst_ScriptListsKeys)

#include "tst_ScriptListsKeys.moc"
