#include "Operation.h"
#include "properties.h"
#include "support/threadedTestMain.h"

#include <QLoggingCategory>
#include <QtTest>

namespace
{

/// Windows come and go by the thousand here, and the offscreen platform says each time what it can't do with them. Qt
/// Test takes so many warnings and no more.
void leaveOutWhatThePlatformLacks()
{
    static QtMessageHandler next = nullptr;
    next = qInstallMessageHandler([](QtMsgType type, const QMessageLogContext& context, const QString& line) {
        if (!line.startsWith(QLatin1String("This plugin does not support "))) {
            next(type, context, line);
        }
    });
}

} // namespace

/// Whatever a user does in the window: it shows what follows from that, and so do the file and the unit.
class tst_userSequences : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void everySequenceEndsInWhatFollowsFromIt();
};

void tst_userSequences::initTestCase()
{
    // The workers tell each of a million packets.
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    properties::setDefaults(40, 20);
    leaveOutWhatThePlatformLacks();
}

void tst_userSequences::everySequenceEndsInWhatFollowsFromIt()
{
    WindowUser user;
    QVERIFY(user.isReady());
    QVERIFY(rc::check("a user's operations", [&user] {
        const UnitState unit = drawnUnit();
        UserModel begin(unit);
        begin.read();
        const auto sequence = *rc::state::gen::commands(begin, anyOperation);
        user.begin(unit);
        rc::state::runAll(sequence, begin, user);
        UserModel end = begin;
        rc::state::applyAll(sequence, end);
        user.save();
        properties::demandNone(user.faultOfFile(end));
        user.write();
        end.write();
        properties::demandNone(user.faultOfUnit(end));
    }));
}

HUBN_THREADED_TEST_MAIN(tst_userSequences)
#include "tst_userSequences.moc"
