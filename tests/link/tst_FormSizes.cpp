#include "link/FormRecorder.h"
#include "support/threadedTestMain.h"

#include <QtTest>

/// The table of ports in a form that is too narrow for it.
class tst_FormSizes : public QObject
{
    Q_OBJECT

private slots:
    void theStateGivesWayAndComesBack();
    void aColumnThatTheUserNarrowedStaysNarrow();

private:
    static constexpr int columnState = 5;
};

void tst_FormSizes::theStateGivesWayAndComesBack()
{
    FormRecorder recorder({portA});
    recorder.form.show();
    const QSize size = recorder.form.size();
    const int width = recorder.table()->columnWidth(columnState);
    QCOMPARE(width, 223);
    recorder.form.setMinimumSize(1, 1); // as on a screen that hasn't room for more
    recorder.form.resize(size.width() - 250, size.height());
    QTRY_VERIFY(recorder.table()->columnWidth(columnState) < width);
    recorder.form.resize(size);
    QTRY_COMPARE(recorder.table()->columnWidth(columnState), width);
}

void tst_FormSizes::aColumnThatTheUserNarrowedStaysNarrow()
{
    FormRecorder recorder({portA});
    recorder.form.show();
    recorder.table()->setColumnWidth(columnState, 150);
    recorder.form.resize(recorder.form.size() + QSize(20, 0));
    QCoreApplication::processEvents();
    QCOMPARE(recorder.table()->columnWidth(columnState), 150);
}

HUBN_THREADED_TEST_MAIN(tst_FormSizes)
#include "tst_FormSizes.moc"
