#include "ui/pickers/SpecialSpinBox.h"

#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>

class tst_SpecialSpinBox : public QObject
{
    Q_OBJECT

private slots:
    void showsAtLeastTwoDigits_data();
    void showsAtLeastTwoDigits();
    void readsTypedDigitsAsDecimal_data();
    void readsTypedDigitsAsDecimal();
    void addsNoSignalsOrSlots();
};

void tst_SpecialSpinBox::showsAtLeastTwoDigits_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("zero") << 0 << QStringLiteral("00");
    QTest::newRow("one digit") << 5 << QStringLiteral("05");
    QTest::newRow("two digits") << 59 << QStringLiteral("59");
    QTest::newRow("three digits") << 100 << QStringLiteral("100");
    QTest::newRow("negative") << -1 << QStringLiteral("-1");
}

void tst_SpecialSpinBox::showsAtLeastTwoDigits()
{
    QFETCH(const int, value);
    QFETCH(const QString, text);
    SpecialSpinBox box;
    box.setRange(-100, 100);
    box.setValue(99);
    box.setValue(value);
    QCOMPARE(box.text(), text);
}

void tst_SpecialSpinBox::readsTypedDigitsAsDecimal_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("value");
    QTest::newRow("one digit") << QStringLiteral("7") << 7;
    QTest::newRow("leading zero is not octal") << QStringLiteral("010") << 10;
    QTest::newRow("08") << QStringLiteral("08") << 8;
    QTest::newRow("two digits") << QStringLiteral("42") << 42;
}

void tst_SpecialSpinBox::readsTypedDigitsAsDecimal()
{
    QFETCH(const QString, typed);
    QFETCH(const int, value);
    SpecialSpinBox box;
    box.setRange(0, 100);
    box.setValue(99);
    box.selectAll();
    QTest::keyClicks(&box, typed);
    QCOMPARE(box.value(), value);
}

void tst_SpecialSpinBox::addsNoSignalsOrSlots()
{
    QCOMPARE(SpecialSpinBox::staticMetaObject.methodCount(), QSpinBox::staticMetaObject.methodCount());
}

QTEST_MAIN(tst_SpecialSpinBox)
#include "tst_SpecialSpinBox.moc"
