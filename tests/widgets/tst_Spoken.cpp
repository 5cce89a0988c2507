#include "widgets/Spoken.h"

#include <QLabel>
#include <QLineEdit>
#include <QtTest>

class tst_Spoken : public QObject
{
    Q_OBJECT

private slots:
    void aCaptionBecomesAName_data();
    void aCaptionBecomesAName();
    void aControlIsNamedByItsCaptionAndTiedToIt();
};

void tst_Spoken::aCaptionBecomesAName_data()
{
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << QStringLiteral("Type") << QStringLiteral("Type");
    QTest::newRow("with a colon") << QStringLiteral("Duration:") << QStringLiteral("Duration");
    QTest::newRow("in two lines") << QStringLiteral("Active scripts for\n1. Relay ")
                                  << QStringLiteral("Active scripts for 1. Relay");
    QTest::newRow("empty") << QString() << QString();
}

void tst_Spoken::aCaptionBecomesAName()
{
    QFETCH(QString, caption);
    QFETCH(QString, name);
    QCOMPARE(spoken::name(caption), name);
}

void tst_Spoken::aControlIsNamedByItsCaptionAndTiedToIt()
{
    QWidget window;
    QLabel label(&window);
    QLineEdit edit(&window);
    spoken::nameBy(&edit, &label, QStringLiteral("Name of script:"));
    QCOMPARE(edit.accessibleName(), QStringLiteral("Name of script"));
    QCOMPARE(label.buddy(), &edit);
    QCOMPARE(label.text(), QStringLiteral("Name of script:"));
}

QTEST_MAIN(tst_Spoken)

#include "tst_Spoken.moc"
