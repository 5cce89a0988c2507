#include "ui/scripts/ShownEditor.h"

/// The list of terminal states that trigger a script: what clicks and keys do to its boxes.
class tst_TerminalStates : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void clickOnBoxTextOrSpaceFlipsOnce_data();
    void clickOnBoxTextOrSpaceFlipsOnce();
    void everyOfManyFastClicksCounts_data();
    void everyOfManyFastClicksCounts();
    void fastClicksOnDifferentStatesAllCount();
    void checkedStatesAreStoredInTableOrder();

private:
    void clickState(int row, bool onBox);

    std::unique_ptr<ShownEditor> shown;
};

void tst_TerminalStates::init()
{
    shown = std::make_unique<ShownEditor>();
    shown->edit();
}

void tst_TerminalStates::cleanup()
{
    shown.reset();
}

void tst_TerminalStates::clickState(int row, bool onBox)
{
    QListWidget* list = shown->states();
    const QRect rect = list->visualItemRect(list->item(row));
    const QPoint box(rect.left() + 9, rect.center().y());
    const QPoint text(rect.left() + 120, rect.center().y());
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, onBox ? box : text);
}

void tst_TerminalStates::clickOnBoxTextOrSpaceFlipsOnce_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<QString>("by");
    for (int row = 0; row < 6; ++row) {
        for (const char* by : {"box", "text", "space"}) {
            QTest::addRow("%s of row %d", by, row) << row << QString::fromLatin1(by);
        }
    }
}

void tst_TerminalStates::clickOnBoxTextOrSpaceFlipsOnce()
{
    QFETCH(const int, row);
    QFETCH(const QString, by);
    shown->open();
    QListWidget* list = shown->states();
    QCOMPARE(list->count(), 6);
    const auto changes = std::make_shared<int>(0);
    connect(list, &QListWidget::itemChanged, this, [changes] { ++*changes; });
    for (const Qt::CheckState expected : {Qt::Checked, Qt::Unchecked, Qt::Checked}) {
        if (by == QLatin1String("space")) {
            list->setCurrentRow(row);
            QTest::keyClick(list, Qt::Key_Space);
        } else {
            clickState(row, by == QLatin1String("box"));
        }
        QCOMPARE(list->item(row)->checkState(), expected);
        QCOMPARE(shown->script()->stateTerminal.size(), expected == Qt::Checked ? 1 : 0);
    }
    QCOMPARE(*changes, 3);
    QCOMPARE(shown->script()->stateTerminal.first(), shown->model->terminalStates().value(row));
    QCOMPARE(int(shown->record().at(4)), int(shown->model->terminalStates().value(row)->code));
}

void tst_TerminalStates::everyOfManyFastClicksCounts_data()
{
    QTest::addColumn<bool>("onBox");
    QTest::newRow("box") << true;
    QTest::newRow("text") << false;
}

/// A user's second quick click reaches a list as a double click; here it is one click more.
void tst_TerminalStates::everyOfManyFastClicksCounts()
{
    QFETCH(const bool, onBox);
    shown->open();
    QListWidget* list = shown->states();
    const QRect rect = list->visualItemRect(list->item(2));
    const QPoint point(rect.left() + (onBox ? 9 : 120), rect.center().y());
    for (int click = 1; click <= 20; ++click) {
        if (click % 2 == 0) {
            QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, point);
            QTest::mouseRelease(list->viewport(), Qt::LeftButton, {}, point);
        } else {
            QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, point);
        }
        QCOMPARE(list->item(2)->checkState(), click % 2 == 1 ? Qt::Checked : Qt::Unchecked);
        QCOMPARE(shown->script()->stateTerminal.size(), click % 2);
    }
}

void tst_TerminalStates::fastClicksOnDifferentStatesAllCount()
{
    shown->open();
    for (int row = 0; row < 6; ++row) {
        clickState(row, row % 2 == 0);
    }
    QCOMPARE(shown->script()->stateTerminal, shown->model->terminalStates());
    QCOMPARE(int(shown->record().at(4)), 0x7E);
}

void tst_TerminalStates::checkedStatesAreStoredInTableOrder()
{
    QListWidget* list = shown->states();
    for (const int row : {4, 0, 2}) {
        list->item(row)->setCheckState(Qt::Checked);
    }
    const ParamItems expected = {shown->model->terminalStates().value(0), shown->model->terminalStates().value(2),
                                 shown->model->terminalStates().value(4)};
    QCOMPARE(shown->script()->stateTerminal, expected);
    list->item(0)->setCheckState(Qt::Unchecked);
    QCOMPARE(shown->script()->stateTerminal, expected.mid(1));
}

QTEST_MAIN(tst_TerminalStates)
#include "tst_TerminalStates.moc"
