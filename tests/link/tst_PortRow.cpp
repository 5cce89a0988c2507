#include "link/PortRow.h"
#include "link/Transmitter.h"

#include <QCheckBox>
#include <QLayout>
#include <QPushButton>
#include <QTableWidgetItem>
#include <QThread>
#include <QTimer>
#include <QtTest>

class tst_PortRow : public QObject
{
    Q_OBJECT

private slots:
    void beginsWithoutACoordinator();
    void itemsCanBeSelectedButNotEdited();
    void controlsBeginAsThoseOfAConnectedPort();
    void theWorkerLivesOnAThreadThatIsNotYetStarted();
    void timersBelongToTheOwnerAndRest();
};

namespace
{

/// A row whose parts are released, which the program never does: here the thread has not been started.
struct OwnedRow
{
    ~OwnedRow()
    {
        const QVector<QTableWidgetItem*> owned = items();
        qDeleteAll(owned);
        delete row.cellWidget;
        delete row.transmitter;
        delete row.thread;
    }

    QVector<QTableWidgetItem*> items() const
    {
        return {row.itemPortName, row.itemBaudrate, row.itemCoordinator,
                row.itemSerial,   row.itemVersion,  row.itemState};
    }

    QObject owner;
    PortRow row{QStringLiteral("pts/99"), {}, &owner};
};

} // namespace

void tst_PortRow::beginsWithoutACoordinator()
{
    const OwnedRow owned;
    const QVector<QTableWidgetItem*> items = owned.items();
    QStringList texts;
    for (const QTableWidgetItem* const item : items) {
        texts.append(item->text());
    }
    QCOMPARE(texts, QStringList({QStringLiteral("pts/99"), QStringLiteral("-"), QStringLiteral("-"),
                                 QStringLiteral("-"), QStringLiteral("-"), QStringLiteral("Connection to port...")}));
    QCOMPARE(owned.row.baudrate, 0);
    QCOMPARE(int(owned.row.coordinatorAddress), 255);
    QCOMPARE(owned.row.firstConnectAttempts, 4);
}

void tst_PortRow::itemsCanBeSelectedButNotEdited()
{
    const OwnedRow owned;
    const QVector<QTableWidgetItem*> items = owned.items();
    for (const QTableWidgetItem* const item : items) {
        QCOMPARE(item->flags(), Qt::ItemIsSelectable | Qt::ItemIsEnabled);
        QCOMPARE(item->textAlignment(), int(Qt::AlignCenter));
    }
}

void tst_PortRow::controlsBeginAsThoseOfAConnectedPort()
{
    const OwnedRow owned;
    const PortRow& row = owned.row;
    QCOMPARE(row.checkBoxCheck->text(), QStringLiteral("checking"));
    QVERIFY(row.checkBoxCheck->isCheckable());
    QVERIFY(!row.checkBoxCheck->isChecked());
    QCOMPARE(row.buttonConnect->text(), QStringLiteral("Disconnect"));
    QCOMPARE(row.buttonConnect->styleSheet(), QStringLiteral("background-color: red"));
    QCOMPARE(row.buttonFirmware->text(), QStringLiteral("Load Firmware"));
    QCOMPARE(row.buttonFirmware->styleSheet(), QStringLiteral("background-color: yellow"));
    QVERIFY(row.buttonFirmware->isHidden());
    QVERIFY(!row.buttonConnect->isHidden());

    const QLayout* const layout = row.cellWidget->layout();
    QCOMPARE(layout->contentsMargins(), QMargins());
    const QVector<QWidget*> controls{row.checkBoxCheck, row.buttonConnect, row.buttonFirmware};
    QCOMPARE(layout->count(), controls.size());
    for (int i = 0; i < controls.size(); ++i) {
        QCOMPARE(layout->itemAt(i)->widget(), controls.at(i));
        QCOMPARE(layout->itemAt(i)->alignment(), Qt::AlignCenter);
    }
}

void tst_PortRow::theWorkerLivesOnAThreadThatIsNotYetStarted()
{
    const OwnedRow owned;
    QCOMPARE(owned.row.transmitter->thread(), owned.row.thread);
    QVERIFY(owned.row.transmitter->parent() == nullptr);
    QVERIFY(owned.row.thread->parent() == nullptr);
    QVERIFY(!owned.row.thread->isRunning());
}

void tst_PortRow::timersBelongToTheOwnerAndRest()
{
    const OwnedRow owned;
    for (const QTimer* const timer : {owned.row.timerPeriodic, owned.row.timerFirstConnect}) {
        QCOMPARE(timer->parent(), &owned.owner);
        QCOMPARE(timer->interval(), 1000);
        QVERIFY(!timer->isSingleShot());
        QVERIFY(!timer->isActive());
    }
}

QTEST_MAIN(tst_PortRow)
#include "tst_PortRow.moc"
