#include "FormRecorder.h"
#include "simulator/PseudoTerminal.h"
#include "support/Eventually.h"
#include "texts/texts.h"

#include <QImage>
#include <QSerialPort>
#include <QtTest>

namespace
{

/// Of the state in a row.
QTableWidgetItem* stateOf(const FormRecorder& recorder, int row = 0)
{
    constexpr int columnState = 5;
    return recorder.table()->item(row, columnState);
}

/// Pixels of the table's inside, below where a first row stands, that differ from its corner.
int paintedPixels(const FormRecorder& recorder)
{
    constexpr int firstRow = 60;
    const QImage image = recorder.table()->viewport()->grab().toImage();
    const QColor ground = image.pixelColor(0, image.height() - 1);
    int count = 0;
    for (int y = firstRow; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            count += int(image.pixelColor(x, y) != ground);
        }
    }
    return count;
}

} // namespace

/// What the coordinator form says of ports that can't be used, and where there is none.
class tst_FormTrouble : public QObject
{
    Q_OBJECT

private slots:
    void theStateKeepsItsTextAndTellsTheCauseByItsToolTip();
    void theToolTipFollowsTheCauseWhileTheFormIsShown();
    void aPortInOrderHasNoToolTip();
    void theEmptyTableSaysWhatToPlugIn();
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

void tst_FormTrouble::theToolTipFollowsTheCauseWhileTheFormIsShown()
{
    const PseudoTerminal line;
    const PseudoTerminal other;
    QSerialPort holder(line.portName());
    QSerialPort otherHolder(other.portName());
    QVERIFY(holder.open(QIODevice::ReadWrite) && otherHolder.open(QIODevice::ReadWrite));
    FormRecorder recorder({line.portName(), other.portName()});
    EVENTUALLY(!stateOf(recorder)->toolTip().isEmpty() && !stateOf(recorder, 1)->toolTip().isEmpty());
    holder.close();
    otherHolder.close();
    recorder.form.show();
    // One port with each look for new ones.
    EVENTUALLY(stateOf(recorder)->toolTip().endsWith(texts::troubleConnect()));
    EVENTUALLY(stateOf(recorder, 1)->toolTip().endsWith(texts::troubleConnect()));
    QCOMPARE(stateOf(recorder)->text(), texts::portOpenError());
}

void tst_FormTrouble::aPortInOrderHasNoToolTip()
{
    const PseudoTerminal line;
    const FormRecorder recorder({line.portName()});
    EVENTUALLY(stateOf(recorder)->text() == texts::portSearching());
    QVERIFY(stateOf(recorder)->toolTip().isEmpty());
}

void tst_FormTrouble::theEmptyTableSaysWhatToPlugIn()
{
    FormRecorder recorder;
    recorder.form.show();
    QCOMPARE(recorder.table()->rowCount(), 0);
    QVERIFY(paintedPixels(recorder) > 200);
    // It is painted, and no part of the form.
    const QList<QWidget*> parts = recorder.form.findChildren<QWidget*>();
    for (const QWidget* const part : parts) {
        QVERIFY(part->property("text").toString() != texts::portsNone());
    }
    // Nothing of it is left beside a port.
    recorder.names.append(portA);
    recorder.form.sl_updatePortList();
    QCOMPARE(recorder.table()->rowCount(), 1);
    QCOMPARE(paintedPixels(recorder), 0);
}

QTEST_MAIN(tst_FormTrouble)
#include "tst_FormTrouble.moc"
