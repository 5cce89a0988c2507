#include "FormRecorder.h"
#include "simulator/PseudoTerminal.h"
#include "support/Eventually.h"
#include "texts/texts.h"

#include <QSerialPort>
#include <QtTest>

namespace
{

/// Of the state in the first row.
QTableWidgetItem* stateOf(const FormRecorder& recorder)
{
    constexpr int columnState = 5;
    return recorder.table()->item(0, columnState);
}

} // namespace

/// What the coordinator form says of ports that can't be used.
class tst_FormTrouble : public QObject
{
    Q_OBJECT

private slots:
    void theStateKeepsItsTextAndTellsTheCauseByItsToolTip();
    void aPortInOrderHasNoToolTip();
};

void tst_FormTrouble::theStateKeepsItsTextAndTellsTheCauseByItsToolTip()
{
    const PseudoTerminal line;
    QSerialPort holder(line.portName());
    QVERIFY(holder.open(QIODevice::ReadWrite));
    const FormRecorder recorder({line.portName()});
    EVENTUALLY(!stateOf(recorder)->toolTip().isEmpty());
    QCOMPARE(stateOf(recorder)->text(), texts::portOpenError());
    const PortTrouble trouble = PortTrouble::of(line.portName());
    QCOMPARE(stateOf(recorder)->toolTip(), trouble.whatIsWrong() + QLatin1Char('\n') + trouble.whatToDo());
    QVERIFY(stateOf(recorder)->toolTip().contains(QStringLiteral("is held by tst_FormTrouble")));
}

void tst_FormTrouble::aPortInOrderHasNoToolTip()
{
    const PseudoTerminal line;
    const FormRecorder recorder({line.portName()});
    EVENTUALLY(stateOf(recorder)->text() == texts::portSearching());
    QVERIFY(stateOf(recorder)->toolTip().isEmpty());
}

QTEST_MAIN(tst_FormTrouble)
#include "tst_FormTrouble.moc"
