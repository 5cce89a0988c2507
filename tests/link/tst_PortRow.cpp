#include "link/Port.h"
#include "link/PortRow.h"

#include <QCheckBox>
#include <QLayout>
#include <QPushButton>
#include <QTableWidgetItem>
#include <QtTest>

class tst_PortRow : public QObject
{
    Q_OBJECT

private slots:
    void beginsWithoutACoordinator();
    void itemsCanBeSelectedButNotEdited();
    void controlsBeginAsThoseOfAConnectedPort();
    void showsWhatIsKnownOfThePort();
};

namespace
{

/// A row whose parts are released, which is otherwise left to its table.
struct OwnedRow
{
    ~OwnedRow()
    {
        const QVector<QTableWidgetItem*> owned = items();
        qDeleteAll(owned);
        delete row.itemControls;
        delete row.cellWidget;
    }

    QVector<QTableWidgetItem*> items() const
    {
        return {row.itemPortName, row.itemBaudrate, row.itemCoordinator,
                row.itemSerial,   row.itemVersion,  row.itemState};
    }

    QStringList texts() const
    {
        const QVector<QTableWidgetItem*> shown = items();
        QStringList result;
        for (const QTableWidgetItem* const item : shown) {
            result.append(item->text());
        }
        return result;
    }

    Port port{QStringLiteral("pts/99")};
    PortRow row{&port};
};

} // namespace

void tst_PortRow::beginsWithoutACoordinator()
{
    const OwnedRow owned;
    QCOMPARE(owned.texts(),
             QStringList({QStringLiteral("pts/99"), QStringLiteral("-"), QStringLiteral("-"), QStringLiteral("-"),
                          QStringLiteral("-"), QStringLiteral("Connection to port...")}));
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

void tst_PortRow::showsWhatIsKnownOfThePort()
{
    OwnedRow owned;
    const PortRow& row = owned.row;
    owned.port.setLineBaudrate(9600);
    owned.port.setState(StateCoordinatorConnected);
    owned.port.setWatched(true);
    row.refresh();
    QCOMPARE(row.itemBaudrate->text(), QStringLiteral("9600"));
    QCOMPARE(row.itemState->text(), QStringLiteral("Coordinator connected"));
    QVERIFY(row.checkBoxCheck->isChecked());
    QVERIFY(!row.cellWidget->isHidden());

    // A rate like any other: only a port that is closed has none.
    owned.port.setLineBaudrate(0);
    row.refresh();
    QCOMPARE(row.itemBaudrate->text(), QStringLiteral("0"));

    owned.port.close();
    row.refresh();
    QCOMPARE(row.itemBaudrate->text(), QStringLiteral("-"));
    QCOMPARE(row.buttonConnect->text(), QStringLiteral("Connect"));
    QCOMPARE(row.buttonConnect->styleSheet(), QStringLiteral("background-color: green"));
    QVERIFY(!row.checkBoxCheck->isChecked());
    QVERIFY(row.checkBoxCheck->isHidden());
    QVERIFY(!row.buttonFirmware->isHidden());
}

QTEST_MAIN(tst_PortRow)
#include "tst_PortRow.moc"
