#include "widgets/scaledApplication.h"

#include <QScreen>
#include <QStyle>
#include <QtTest>

namespace
{

int askedResolution()
{
    return qEnvironmentVariableIntValue("SCREEN_DPI");
}

} // namespace

/// An application on a display whose fonts have the resolution that the environment names, 0 for none.
class tst_scaledApplication : public QObject
{
    Q_OBJECT

private slots:
    void scaleIsTheOneThatIsAskedFor();
    void fontsAreAsLargeAsTheFormsTakeThem();
    void argumentsAreStillThere();
};

void tst_scaledApplication::scaleIsTheOneThatIsAskedFor()
{
    // Without a resolution the X server tells one of its own, a hair off 96, which must not scale anything.
    const double asked = askedResolution() >= 106 ? askedResolution() / 96.0 : 1;
    QCOMPARE(QGuiApplication::primaryScreen()->devicePixelRatio(), asked);
    QVERIFY(QCoreApplication::testAttribute(Qt::AA_UseHighDpiPixmaps));
}

void tst_scaledApplication::fontsAreAsLargeAsTheFormsTakeThem()
{
    const double unscaled = askedResolution() >= 106 || askedResolution() == 0 ? 96 : askedResolution();
    QVERIFY(qAbs(QGuiApplication::primaryScreen()->logicalDotsPerInch() - unscaled) < 5);
}

void tst_scaledApplication::argumentsAreStillThere()
{
    QCOMPARE(QCoreApplication::arguments().size(), 2);
    QCOMPARE(QCoreApplication::arguments().constLast(), QStringLiteral("of the program"));
    QCOMPARE(QApplication::style()->objectName(), QStringLiteral("windows"));
}

int main(int argc, char* argv[])
{
    QByteArray words[] = {argv[0], "-style", "windows", "of the program"};
    char* pointers[] = {words[0].data(), words[1].data(), words[2].data(), words[3].data(), nullptr};
    int count = 4;
    const auto application = scaledApplication(count, pointers);
    tst_scaledApplication test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_scaledApplication.moc"
