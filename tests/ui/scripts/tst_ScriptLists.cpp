#include "model/RelayInfo.h"
#include "ui/scripts/ScriptLists.h"
#include "ui/scripts/ScriptSummary.h"

#include <QApplication>
#include <QLabel>
#include <QListWidget>
#include <QScrollBar>
#include <QtTest>

#include <memory>

namespace
{

const QString grey = QStringLiteral("rgba(187, 187, 187, 150)");

QString rowStyle(const QString& color)
{
    return QStringLiteral("QLabel{background-color: %1;} QToolTip {background-color: #F4F4F4}").arg(color);
}

QList<int> numbersOf(const QList<ScriptInfoPtr>& scripts)
{
    QList<int> numbers;
    for (const ScriptInfoPtr& script : scripts) {
        numbers.append(script->number);
    }
    return numbers;
}

} // namespace

class tst_ScriptLists : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void listsSelectManyAndTheActiveOneIsDragged();
    void allListShowsEveryScript();
    void activeListShowsTheScriptsOfTheOutputInTheirOrder();
    void rowsAreColouredByModeOrGrey_data();
    void rowsAreColouredByModeOrGrey();
    void noOutputEmptiesTheActiveList();
    void addingTakesTheSelectedScriptsInTheOrderOfTheList();
    void addingAnActiveScriptChangesNothingButIsTold();
    void removingTakesTheSelectedScripts();
    void aScriptThatStandsTwiceGoesByItsRow();
    void aScriptThatStandsTwiceIsSelectedTwice();
    void withoutAnOutputAddingAndRemovingAreOnlyTold();
    void doubleClickInTheAllListAdds();
    void doubleClickInTheActiveListRemoves();
    void fastDoubleClicksLoseNothing();

    void chosenRowIsReportedAndMirrored();
    void chosenRowWithoutAPartnerLeavesNoCurrentRow();
    void chosenActiveRowIsMirrored();
    void selectionIsMirrored();
    void selectionByKeysIsMirrored();
    void selectionOfActiveRowsIsMirrored();
    void currentRowStaysSelectedWhenNothingElseIs();
    void rebuiltActiveListFollowsTheAllList();
    void firstActiveRowIsSelectedAlone();

    void repaintingFollowsNameModeAndTrigger();
    void repaintingPassesOverScriptsWithoutAMode();
    void repaintingReportsTheColourOfTheEditedScript();
    void newScriptsSelectTheFirstActiveRow();
    void newScriptsSelectTheFirstRowOfAllWithoutActiveOnes();

    void finishedDragStoresTheOrder();
    void lostRowStopsTheStoringAndComesBack();
    void noRowCanBeDroppedOnto();
    void tooltipIsTheSummaryInBothLists();
    void oddNamesAreShownAsTheyAre_data();
    void oddNamesAreShownAsTheyAre();

private:
    QLabel* label(QListWidget* list, int row) const
    {
        return qobject_cast<QLabel*>(list->itemWidget(list->item(row)));
    }
    QStringList texts(QListWidget* list) const;
    QList<int> selectedRows(QListWidget* list) const;
    void activate(const QList<int>& numbers);

    QSharedPointer<RelayInfo> info;
    RelayInformationPtr output;
    std::unique_ptr<QWidget> window;
    QListWidget* all = nullptr;
    QListWidget* active = nullptr;
    std::unique_ptr<ScriptLists> lists;
    QList<int> chosen;
    int outputChanges = 0;
    QStringList colors;
};

void tst_ScriptLists::init()
{
    info = QSharedPointer<RelayInfo>::create();
    output = info->groups().first()->outputs.first();
    window = std::make_unique<QWidget>();
    all = new QListWidget(window.get());
    active = new QListWidget(window.get());
    window->resize(420, 820);
    active->setGeometry(0, 0, 200, 800);
    all->setGeometry(210, 0, 200, 800);
    lists = std::make_unique<ScriptLists>(info, all, active);
    chosen.clear();
    colors.clear();
    outputChanges = 0;
    connect(all, &QListWidget::currentItemChanged, lists.get(), &ScriptLists::allCurrentChanged);
    connect(all, &QListWidget::itemSelectionChanged, lists.get(), &ScriptLists::allSelectionChanged);
    connect(active, &QListWidget::currentItemChanged, lists.get(), &ScriptLists::activeCurrentChanged);
    connect(active, &QListWidget::itemSelectionChanged, lists.get(), &ScriptLists::activeSelectionChanged);
    connect(lists.get(), &ScriptLists::scriptChosen, this,
            [this](const ScriptInfoPtr& script) { chosen.append(script->number); });
    connect(lists.get(), &ScriptLists::outputChanged, this, [this] { ++outputChanges; });
    connect(lists.get(), &ScriptLists::editedColorChanged, this, [this](const QString& rgba) { colors.append(rgba); });
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    lists->rebuildAll();
    lists->rebuildActive(output);
}

void tst_ScriptLists::cleanup()
{
    lists.reset();
    window.reset();
    info.clear();
}

QStringList tst_ScriptLists::texts(QListWidget* list) const
{
    QStringList rows;
    for (int row = 0; row < list->count(); ++row) {
        rows.append(label(list, row)->text());
    }
    return rows;
}

QList<int> tst_ScriptLists::selectedRows(QListWidget* list) const
{
    QList<int> rows;
    for (int row = 0; row < list->count(); ++row) {
        if (list->item(row)->isSelected()) {
            rows.append(row);
        }
    }
    return rows;
}

/// Gives the output the scripts with these numbers, counted from 0.
void tst_ScriptLists::activate(const QList<int>& numbers)
{
    output->activatedScripts.clear();
    for (int number : numbers) {
        output->activatedScripts.append(info->findScript(quint8(number)));
    }
    lists->rebuildActive(output);
}

void tst_ScriptLists::listsSelectManyAndTheActiveOneIsDragged()
{
    QCOMPARE(all->selectionMode(), QAbstractItemView::ExtendedSelection);
    QCOMPARE(active->selectionMode(), QAbstractItemView::ExtendedSelection);
    QCOMPARE(active->dragDropMode(), QAbstractItemView::InternalMove);
    QVERIFY(all->dragDropMode() != QAbstractItemView::InternalMove);
}

void tst_ScriptLists::allListShowsEveryScript()
{
    info->findScript(9)->name = QStringLiteral("Fan");
    lists->rebuildAll();
    QCOMPARE(all->count(), 32);
    QCOMPARE(label(all, 0)->text(), QStringLiteral(" 1. Script"));
    QCOMPARE(label(all, 9)->text(), QStringLiteral("10. Fan"));
    QCOMPARE(label(all, 31)->text(), QStringLiteral("32. Script"));
}

/// Nothing is left of the rows before, of which there may be more or fewer.
void tst_ScriptLists::activeListShowsTheScriptsOfTheOutputInTheirOrder()
{
    for (const QList<int>& numbers : {QList<int>{11, 0, 5}, {4, 30}, {}, {2, 7, 9, 2}}) {
        activate(numbers);
        QStringList expected;
        for (const int number : numbers) {
            expected.append(QStringLiteral("%1. Script").arg(number + 1, 3));
        }
        QCOMPARE(texts(active), expected);
        QCOMPARE(active->currentRow(), -1);
        QVERIFY(selectedRows(active).isEmpty());
        active->selectAll();
        lists->rebuildAll(); // no row of it is selected or current
    }
}

void tst_ScriptLists::rowsAreColouredByModeOrGrey_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("notActive");
    QTest::addColumn<QString>("color");
    QTest::newRow("no trigger") << 1 << true << grey;
    QTest::newRow("deactivation") << 0 << false << QStringLiteral("rgba(255, 255, 255, 100)");
    QTest::newRow("activation") << 1 << false << QStringLiteral("rgba(0, 255, 17, 150)");
    QTest::newRow("pulsation") << 2 << false << QStringLiteral("rgba(255, 255, 0, 150)");
    QTest::newRow("disable") << 4 << false << QStringLiteral("rgba(255, 0, 0, 150)");
}

void tst_ScriptLists::rowsAreColouredByModeOrGrey()
{
    QFETCH(int, mode);
    QFETCH(bool, notActive);
    QFETCH(QString, color);
    const ScriptInfoPtr script = info->findScript(3);
    script->mode = info->modes().value(mode);
    script->notActive = notActive;
    lists->rebuildAll();
    activate({3});
    QCOMPARE(label(all, 3)->styleSheet(), rowStyle(color));
    QCOMPARE(label(active, 0)->styleSheet(), rowStyle(color));
}

void tst_ScriptLists::noOutputEmptiesTheActiveList()
{
    activate({1, 2});
    lists->rebuildActive({});
    QCOMPARE(active->count(), 0);
    QVERIFY(!all->signalsBlocked());
}

void tst_ScriptLists::addingTakesTheSelectedScriptsInTheOrderOfTheList()
{
    activate({30});
    all->item(7)->setSelected(true);
    all->item(2)->setSelected(true);
    all->item(30)->setSelected(true);
    lists->addSelected();
    QCOMPARE(numbersOf(output->activatedScripts), QList<int>({30, 2, 7}));
    QCOMPARE(active->count(), 3);
    QCOMPARE(selectedRows(active), QList<int>({0, 1, 2}));
    QCOMPARE(selectedRows(all), QList<int>({2, 7, 30}));
    QCOMPARE(outputChanges, 1);
}

void tst_ScriptLists::addingAnActiveScriptChangesNothingButIsTold()
{
    activate({4});
    const QListWidgetItem* row = active->item(0);
    all->setCurrentRow(4);
    lists->addSelected();
    QCOMPARE(numbersOf(output->activatedScripts), QList<int>{4});
    QCOMPARE(active->item(0), row); // not even the list was rebuilt
    QCOMPARE(outputChanges, 1);
}

void tst_ScriptLists::removingTakesTheSelectedScripts()
{
    activate({4, 8, 12});
    active->clearSelection();
    active->item(0)->setSelected(true);
    active->item(2)->setSelected(true);
    lists->removeSelected();
    QCOMPARE(numbersOf(output->activatedScripts), QList<int>{8});
    QCOMPARE(active->count(), 1);
    QCOMPARE(outputChanges, 1);
    activate({});
    lists->removeSelected();
    QCOMPARE(outputChanges, 2);
}

void tst_ScriptLists::aScriptThatStandsTwiceGoesByItsRow()
{
    activate({3, 7, 3});
    active->clearSelection();
    active->setCurrentRow(2, QItemSelectionModel::ClearAndSelect);
    lists->removeSelected();
    QCOMPARE(numbersOf(output->activatedScripts), QList<int>({3, 7}));
}

void tst_ScriptLists::aScriptThatStandsTwiceIsSelectedTwice()
{
    activate({3, 7, 3});
    all->setCurrentRow(3, QItemSelectionModel::ClearAndSelect);
    QCOMPARE(selectedRows(active), QList<int>({0, 2}));
    all->setCurrentRow(7, QItemSelectionModel::ClearAndSelect);
    QCOMPARE(selectedRows(active), QList<int>({1}));
}

void tst_ScriptLists::withoutAnOutputAddingAndRemovingAreOnlyTold()
{
    lists->rebuildActive({});
    all->setCurrentRow(4);
    lists->addSelected();
    QCOMPARE(outputChanges, 1);
    lists->removeSelected();
    QCOMPARE(outputChanges, 2);
    QCOMPARE(active->count(), 0);
    QVERIFY(output->activatedScripts.isEmpty());
}

void tst_ScriptLists::doubleClickInTheAllListAdds()
{
    QTest::mouseClick(label(all, 6), Qt::LeftButton);
    QTest::mouseDClick(label(all, 6), Qt::LeftButton);
    QCOMPARE(numbersOf(output->activatedScripts), QList<int>{6});
    QCOMPARE(outputChanges, 1);
    QCOMPARE(chosen.last(), 6);
}

void tst_ScriptLists::doubleClickInTheActiveListRemoves()
{
    activate({6, 7});
    QTest::mouseClick(label(active, 0), Qt::LeftButton);
    QTest::mouseDClick(label(active, 0), Qt::LeftButton);
    QCOMPARE(numbersOf(output->activatedScripts), QList<int>{7});
    // The row that has moved up under the mouse isn't chosen by the same click.
    QCOMPARE(selectedRows(active), QList<int>());
    QCOMPARE(chosen.last(), 6);
}

void tst_ScriptLists::fastDoubleClicksLoseNothing()
{
    for (int row = 0; row < 8; ++row) {
        QTest::mouseClick(label(all, row), Qt::LeftButton);
        QTest::mouseDClick(label(all, row), Qt::LeftButton);
        QTest::mouseDClick(label(all, row), Qt::LeftButton);
    }
    QCOMPARE(numbersOf(output->activatedScripts), QList<int>({0, 1, 2, 3, 4, 5, 6, 7}));
    for (int count = 8; count > 0; --count) {
        QTest::mouseClick(label(active, 0), Qt::LeftButton);
        QTest::mouseDClick(label(active, 0), Qt::LeftButton);
    }
    QVERIFY(output->activatedScripts.isEmpty());
    QCOMPARE(active->count(), 0);
    QCOMPARE(all->count(), 32);
}

void tst_ScriptLists::chosenRowIsReportedAndMirrored()
{
    activate({3, 9});
    chosen.clear();
    QTest::mouseClick(label(all, 9), Qt::LeftButton);
    QCOMPARE(chosen, QList<int>{9});
    QCOMPARE(active->currentRow(), 1);
    QCOMPARE(selectedRows(active), QList<int>{1});
}

void tst_ScriptLists::chosenRowWithoutAPartnerLeavesNoCurrentRow()
{
    activate({3, 9});
    all->setCurrentRow(9);
    chosen.clear();
    QTest::mouseClick(label(all, 10), Qt::LeftButton);
    QCOMPARE(chosen, QList<int>{10});
    QCOMPARE(active->currentRow(), -1);
    QCOMPARE(selectedRows(active), QList<int>());
}

void tst_ScriptLists::chosenActiveRowIsMirrored()
{
    activate({3, 9});
    active->setCurrentRow(0);
    chosen.clear();
    QTest::mouseClick(label(active, 1), Qt::LeftButton);
    QCOMPARE(chosen, QList<int>{9});
    QCOMPARE(all->currentRow(), 9);
    QCOMPARE(selectedRows(all), QList<int>{9});
    QTest::keyClick(active, Qt::Key_Up);
    QCOMPARE(chosen, QList<int>({9, 3}));
    QCOMPARE(all->currentRow(), 3);
    QCOMPARE(selectedRows(all), QList<int>{3});
}

void tst_ScriptLists::selectionIsMirrored()
{
    activate({3, 9, 4});
    QTest::mouseClick(label(all, 3), Qt::LeftButton);
    QTest::mouseClick(label(all, 5), Qt::LeftButton, Qt::ShiftModifier);
    QCOMPARE(selectedRows(all), QList<int>({3, 4, 5}));
    QCOMPARE(selectedRows(active), QList<int>({0, 2}));
    QTest::mouseClick(label(all, 9), Qt::LeftButton, Qt::ControlModifier);
    QCOMPARE(selectedRows(active), QList<int>({0, 1, 2}));
    QTest::mouseClick(label(all, 3), Qt::LeftButton, Qt::ControlModifier);
    QCOMPARE(selectedRows(active), QList<int>({1, 2}));
}

void tst_ScriptLists::selectionByKeysIsMirrored()
{
    activate({3, 4, 5});
    all->setCurrentRow(3);
    for (int i = 0; i < 3; ++i) {
        QTest::keyClick(all, Qt::Key_Down, Qt::ShiftModifier);
    }
    QCOMPARE(selectedRows(all), QList<int>({3, 4, 5, 6}));
    QCOMPARE(selectedRows(active), QList<int>({0, 1, 2}));
    QCOMPARE(active->currentRow(), -1);
    QTest::keyClick(all, Qt::Key_Up, Qt::ShiftModifier);
    QCOMPARE(active->currentRow(), 2);
    QCOMPARE(selectedRows(active), QList<int>({0, 1, 2}));
    QTest::keyClick(all, Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(selectedRows(active), QList<int>({0, 1, 2}));
}

void tst_ScriptLists::selectionOfActiveRowsIsMirrored()
{
    activate({3, 9, 4});
    QTest::mouseClick(label(active, 0), Qt::LeftButton);
    QTest::mouseClick(label(active, 1), Qt::LeftButton, Qt::ControlModifier);
    QCOMPARE(selectedRows(all), QList<int>({3, 9}));
    QCOMPARE(all->currentRow(), 9);
}

void tst_ScriptLists::currentRowStaysSelectedWhenNothingElseIs()
{
    activate({3});
    QTest::mouseClick(label(all, 3), Qt::LeftButton);
    all->clearSelection();
    QCOMPARE(selectedRows(all), QList<int>{3});
    QCOMPARE(selectedRows(active), QList<int>{0});
}

void tst_ScriptLists::rebuiltActiveListFollowsTheAllList()
{
    all->setCurrentRow(9);
    all->item(3)->setSelected(true);
    chosen.clear();
    activate({3, 7, 9});
    QCOMPARE(chosen, QList<int>{9});
    QCOMPARE(active->currentRow(), 2);
    QCOMPARE(selectedRows(active), QList<int>({0, 2}));
    QCOMPARE(selectedRows(all), QList<int>({3, 9}));
}

void tst_ScriptLists::firstActiveRowIsSelectedAlone()
{
    all->setCurrentRow(9);
    activate({3, 7, 9});
    lists->selectFirstActive();
    QCOMPARE(active->currentRow(), 0);
    QCOMPARE(selectedRows(active), QList<int>{0});
    QCOMPARE(selectedRows(all), QList<int>{3});
    QCOMPARE(chosen.last(), 3);
    activate({});
    chosen.clear();
    lists->selectFirstActive();
    QVERIFY(chosen.size() <= 1);
    QCOMPARE(active->currentRow(), -1);
}

void tst_ScriptLists::repaintingFollowsNameModeAndTrigger()
{
    activate({3});
    const ScriptInfoPtr script = info->findScript(3);
    script->name = QStringLiteral("Fan");
    script->mode = info->modes().value(1);
    script->notActive = false;
    lists->refreshStates({});
    for (QLabel* row : {label(all, 3), label(active, 0)}) {
        QCOMPARE(row->text(), QStringLiteral("  4. Fan"));
        QCOMPARE(row->styleSheet(), rowStyle(QStringLiteral("rgba(0, 255, 17, 150)")));
    }
    QCOMPARE(label(all, 11)->text(), QStringLiteral(" 12. Script"));
    QCOMPARE(label(all, 11)->styleSheet(), rowStyle(grey));
}

void tst_ScriptLists::repaintingPassesOverScriptsWithoutAMode()
{
    const ScriptInfoPtr script = info->findScript(3);
    script->name = QStringLiteral("Fan");
    script->mode.clear();
    lists->refreshStates(script);
    QCOMPARE(label(all, 3)->text(), QStringLiteral(" 4. Script"));
    QVERIFY(colors.isEmpty());
    script->notActive = false;
    lists->rebuildAll();
    QCOMPARE(label(all, 3)->styleSheet(), rowStyle(grey));
}

void tst_ScriptLists::repaintingReportsTheColourOfTheEditedScript()
{
    activate({3});
    lists->refreshStates(info->findScript(3));
    QCOMPARE(colors, QStringList{grey});
    lists->refreshStates({});
    QCOMPARE(colors.size(), 1);
}

void tst_ScriptLists::newScriptsSelectTheFirstActiveRow()
{
    activate({5, 2});
    all->setCurrentRow(20);
    info->findScript(5)->name = QStringLiteral("Fan");
    chosen.clear();
    lists->showNewScripts(output, info->findScript(20));
    QCOMPARE(label(all, 5)->text(), QStringLiteral("  6. Fan"));
    QCOMPARE(active->currentRow(), 0);
    QCOMPARE(selectedRows(active), QList<int>{0});
    QCOMPARE(selectedRows(all), QList<int>{5});
    QCOMPARE(chosen, QList<int>({5, 5})); // by the selection, and once more in so many words
    QCOMPARE(colors, QStringList{grey});
}

void tst_ScriptLists::newScriptsSelectTheFirstRowOfAllWithoutActiveOnes()
{
    all->setCurrentRow(20);
    chosen.clear();
    lists->showNewScripts(output, {});
    QCOMPARE(all->currentRow(), 0);
    QCOMPARE(selectedRows(all), QList<int>{0});
    QCOMPARE(chosen, QList<int>({0, 0}));
}

void tst_ScriptLists::finishedDragStoresTheOrder()
{
    activate({3, 9, 4, 12});
    active->model()->moveRow({}, 0, {}, 4);
    active->model()->moveRow({}, 1, {}, 0);
    QCOMPARE(numbersOf(output->activatedScripts), QList<int>({3, 9, 4, 12}));
    delete new QObject(active); // a child is gone, as Qt's drag object is at the end of a drag
    QCOMPARE(numbersOf(output->activatedScripts), QList<int>({4, 9, 12, 3}));
    QCOMPARE(texts(all).size(), 32);
    QCOMPARE(label(all, 0)->text(), QStringLiteral(" 1. Script"));
    // The entries stand in the new order as well: what is removed now is what is seen.
    active->clearSelection();
    active->item(3)->setSelected(true);
    lists->removeSelected();
    QCOMPARE(numbersOf(output->activatedScripts), QList<int>({4, 9, 12}));
}

void tst_ScriptLists::lostRowStopsTheStoringAndComesBack()
{
    activate({3, 9, 4});
    active->model()->moveRow({}, 2, {}, 0);
    delete active->takeItem(2);
    delete new QObject(active);
    QCOMPARE(numbersOf(output->activatedScripts), QList<int>({3, 9, 4}));
    all->setCurrentRow(9); // the script of the lost row
    lists->refreshStates({});
    QTRY_COMPARE(active->count(), 3);
    QCOMPARE(texts(active), QStringList({QStringLiteral("  4. Script"), QStringLiteral(" 10. Script"),
                                         QStringLiteral("  5. Script")}));
}

void tst_ScriptLists::noRowCanBeDroppedOnto()
{
    // Such a drop would replace the row; without it a drop on the middle of a row goes above or below it.
    activate({3, 9});
    for (int row = 0; row < active->count(); ++row) {
        QVERIFY(!active->item(row)->flags().testFlag(Qt::ItemIsDropEnabled));
        QVERIFY(active->item(row)->flags().testFlag(Qt::ItemIsDragEnabled));
    }
}

void tst_ScriptLists::tooltipIsTheSummaryInBothLists()
{
    activate({3});
    const ScriptInfoPtr script = info->findScript(3);
    script->name = QStringLiteral("<i>Fan</i>");
    QHelpEvent event(QEvent::ToolTip, QPoint(1, 1), label(active, 0)->mapToGlobal(QPoint(1, 1)));
    QVERIFY(!lists->eventFilter(label(active, 0), &event));
    QCOMPARE(label(active, 0)->toolTip(), scriptSummary(script));
    QCOMPARE(label(all, 3)->toolTip(), scriptSummary(script));
    QVERIFY(label(all, 4)->toolTip().isEmpty());
    // Each request asks anew.
    script->name = QStringLiteral("Lamp");
    QApplication::sendEvent(label(all, 3), &event);
    QCOMPARE(label(active, 0)->toolTip(), scriptSummary(script));
}

void tst_ScriptLists::oddNamesAreShownAsTheyAre_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << QString();
    QTest::newRow("markup") << QStringLiteral("<b>x</b>&amp;<img src=a>");
    QTest::newRow("place markers") << QStringLiteral("%1 %2 %n");
    QTest::newRow("ampersand") << QStringLiteral("R&D");
    QTest::newRow("other scripts") << QStringLiteral("Сценарий \u0645\u0631\u062d\u0628\u0627 \U0001F525");
    QTest::newRow("200 letters") << QString(200, QLatin1Char('W'));
}

void tst_ScriptLists::oddNamesAreShownAsTheyAre()
{
    QFETCH(QString, name);
    info->findScript(0)->name = name;
    lists->rebuildAll();
    activate({0});
    QCOMPARE(label(all, 0)->text(), QStringLiteral(" 1. ") + name);
    QCOMPARE(label(active, 0)->text(), QStringLiteral("  1. ") + name);
    QCOMPARE(label(active, 0)->textFormat(), Qt::PlainText);
    QVERIFY(label(all, 0)->width() <= all->viewport()->width());
    QVERIFY(!all->horizontalScrollBar()->isVisible());
    QCOMPARE(label(all, 0)->height(), label(all, 1)->height());
}

QTEST_MAIN(tst_ScriptLists)
#include "tst_ScriptLists.moc"
