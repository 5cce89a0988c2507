#include "LinkRecorder.h"
#include "simulator/PseudoTerminal.h"
#include "simulator/UnitSimulator.h"
#include "support/DebugLines.h"
#include "support/Eventually.h"
#include "support/OrdinaryUser.h"

#include <QProcess>
#include <QSemaphore>
#include <QSerialPort>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>

namespace
{

using Cause = PortTrouble::Cause;

/// A port that root may open and the ordinary user may not.
class ForbiddenPort : public PseudoTerminal
{
public:
    ForbiddenPort(gid_t group, mode_t mode)
    {
        const QByteArray device = "/dev/" + portName().toLatin1();
        isMade = ::chown(device.constData(), 0, group) == 0 && ::chmod(device.constData(), mode) == 0;
    }

    bool isMade = false;
};

/// Another program, which has a port open and locks none.
class OtherProgram
{
public:
    /// Without a port it has none open.
    explicit OtherProgram(const QString& name, const QString& portName = {})
    {
        const QString program = folder.filePath(name);
        const QString input = portName.isEmpty() ? QStringLiteral("/dev/null") : QStringLiteral("/dev/") + portName;
        QFile::copy(QStringLiteral("/bin/sleep"), program);
        process.start(QStringLiteral("/bin/sh"),
                      {QStringLiteral("-c"), QStringLiteral("exec '%1' 60 <%2").arg(program, input)});
        process.waitForStarted();
    }
    ~OtherProgram()
    {
        process.kill();
        process.waitForFinished();
    }
    Q_DISABLE_COPY_MOVE(OtherProgram)

    QTemporaryDir folder;
    QProcess process;
};

/// A link over a port that this program itself has open.
struct LinkOverHeldPort
{
    PseudoTerminal line;
    QSerialPort holder{line.portName()};
    bool isHeld = holder.open(QIODevice::ReadWrite);
    LinkRecorder recorder{{line.portName()}};

    bool hasToldTrouble() const
    {
        return isHeld && recorder.info().trouble.has_value() && !recorder.info().connected;
    }
};

/// Takes all that a port's thread has to say to what it was told before.
void hearFromWorker(const Port* port)
{
    QMetaObject::invokeMethod(
        port->worker(), [] {}, Qt::BlockingQueuedConnection);
    QCoreApplication::sendPostedEvents();
}

constexpr gid_t noGroup = 65000; ///< which nobody is in
constexpr mode_t forOwner = 0600;
constexpr mode_t forGroup = 0660;

} // namespace

/// Why a port can't be used: what the system tells of it, and what a port makes of that.
class tst_PortTrouble : public QObject
{
    Q_OBJECT

private slots:
    void aPortThatIsNotThereIsUnplugged();
    void withoutTheRightTheGroupIsNamed();
    void aDeviceOfItsOwnerAloneHasNoGroupToJoin();
    void theGroupOfTheAdministratorIsNoneToJoin();
    void aMemberSinceTheLastLoginIsToLogInAgain();
    void theHolderIsNamedByItsLock();
    void aHolderWithoutALockIsNamedByItsOpenFiles();
    void modemManagerIsToBeWaitedFor();
    void whereNoHolderIsSeenModemManagerMayBeIt();

    void aPortThatMayNotBeOpenedTellsIt();
    void aHeldPortTellsByWhom();
    void aPortThatGoesTellsItUntilItIsBack();
    void connectingAnewForgetsIt();

    void theCauseIsLookedForOnTheThreadOfThePort();
    void theAnswerOfAnOlderStateIsDropped();
    void aCauseThatChangesIsSeenWhenItIsCheckedAgain();
    void aCauseThatHasGoneIsPast();
    void anAttemptThatFailsMeanwhileIsNotOver();
    void theEndOfACheckIsToldThoughNothingChanged();
    void aPortWithoutTroubleIsNotChecked();
};

void tst_PortTrouble::aPortThatIsNotThereIsUnplugged()
{
    const PortTrouble trouble = PortTrouble::of(portA);
    QCOMPARE(trouble.cause, Cause::Unplugged);
    QVERIFY2(trouble.whatIsWrong().contains(QStringLiteral("/dev/") + portA), qUtf8Printable(trouble.whatIsWrong()));
    QVERIFY(trouble.whatToDo().startsWith(QStringLiteral("Plug it in")));
}

void tst_PortTrouble::withoutTheRightTheGroupIsNamed()
{
    const group* const dialout = ::getgrnam("dialout");
    if (::geteuid() != 0 || dialout == nullptr) {
        QSKIP("only root can make a port that may not be opened", );
    }
    const ForbiddenPort port(dialout->gr_gid, forGroup);
    QVERIFY(port.isMade);
    const OrdinaryUser user;
    QVERIFY(user.isOrdinary);
    const PortTrouble trouble = PortTrouble::of(port.portName());
    QCOMPARE(trouble.cause, Cause::NoRight);
    QCOMPARE(
        trouble.whatIsWrong(),
        QStringLiteral("nobody has no right to open /dev/%1, which is for the group dialout.").arg(port.portName()));
    QCOMPARE(trouble.whatToDo(), QStringLiteral("Run \"sudo usermod -aG dialout nobody\", then log out and in again."));
}

void tst_PortTrouble::aDeviceOfItsOwnerAloneHasNoGroupToJoin()
{
    if (::geteuid() != 0) {
        QSKIP("only root can make a port that may not be opened", );
    }
    const ForbiddenPort port(noGroup, forOwner);
    QVERIFY(port.isMade);
    const OrdinaryUser user;
    QVERIFY(user.isOrdinary);
    const PortTrouble trouble = PortTrouble::of(port.portName());
    QCOMPARE(trouble.cause, Cause::NoRight);
    QVERIFY2(trouble.whatIsWrong().endsWith(QStringLiteral("belongs to root alone.")),
             qUtf8Printable(trouble.whatIsWrong()));
    QVERIFY(!trouble.whatToDo().contains(QStringLiteral("usermod")));
}

void tst_PortTrouble::theGroupOfTheAdministratorIsNoneToJoin()
{
    if (::geteuid() != 0) {
        QSKIP("only root can make a port that may not be opened", );
    }
    const ForbiddenPort port(0, forGroup);
    QVERIFY(port.isMade);
    // The test is in that group still.
    const gid_t own = ::getegid();
    QVERIFY(::setegid(noGroup) == 0);
    PortTrouble trouble;
    {
        std::array<gid_t, 64> groups{};
        const int count = ::getgroups(int(groups.size()), groups.data());
        QVERIFY(count >= 0 && ::setgroups(0, nullptr) == 0);
        {
            const OrdinaryUser user;
            QVERIFY(user.isOrdinary);
            trouble = PortTrouble::of(port.portName());
        }
        QVERIFY(::setgroups(size_t(count), groups.data()) == 0);
    }
    QVERIFY(::setegid(own) == 0);
    QCOMPARE(trouble.cause, Cause::NoRight);
    QVERIFY(trouble.group.isEmpty());
}

void tst_PortTrouble::aMemberSinceTheLastLoginIsToLogInAgain()
{
    const passwd* const nobody = ::getpwnam("nobody");
    if (::geteuid() != 0 || nobody == nullptr) {
        QSKIP("only root can make a port that may not be opened", );
    }
    // The user is in this group by the database; the process is in that of root.
    const ForbiddenPort port(nobody->pw_gid, forGroup);
    QVERIFY(port.isMade);
    const OrdinaryUser user;
    QVERIFY(user.isOrdinary);
    const PortTrouble trouble = PortTrouble::of(port.portName());
    QCOMPARE(trouble.cause, Cause::NoRight);
    QVERIFY(trouble.awaitsLogin);
    QVERIFY2(trouble.whatToDo().contains(QStringLiteral("next login")), qUtf8Printable(trouble.whatToDo()));
}

void tst_PortTrouble::theHolderIsNamedByItsLock()
{
    const PseudoTerminal line;
    QSerialPort holder(line.portName());
    QVERIFY(holder.open(QIODevice::ReadWrite));
    const PortTrouble trouble = PortTrouble::of(line.portName());
    QCOMPARE(trouble.cause, Cause::Busy);
    QCOMPARE(trouble.process, QCoreApplication::applicationPid());
    QCOMPARE(trouble.holder, QStringLiteral("tst_PortTrouble"));
    QVERIFY2(trouble.whatIsWrong().endsWith(
                 QStringLiteral(" is held by tst_PortTrouble (process %1).").arg(QCoreApplication::applicationPid())),
             qUtf8Printable(trouble.whatIsWrong()));
    QVERIFY(trouble.whatToDo().contains(QStringLiteral("End tst_PortTrouble")));
}

void tst_PortTrouble::aHolderWithoutALockIsNamedByItsOpenFiles()
{
    const PseudoTerminal line;
    const OtherProgram other(QStringLiteral("terminal"), line.portName());
    EVENTUALLY(PortTrouble::of(line.portName()).holder == QStringLiteral("terminal"));
    const PortTrouble trouble = PortTrouble::of(line.portName());
    QCOMPARE(trouble.cause, Cause::Busy);
    QCOMPARE(trouble.process, other.process.processId());
}

void tst_PortTrouble::modemManagerIsToBeWaitedFor()
{
    const PseudoTerminal line;
    const OtherProgram other(QStringLiteral("ModemManager"), line.portName());
    EVENTUALLY(PortTrouble::of(line.portName()).holder == QStringLiteral("ModemManager"));
    QVERIFY(PortTrouble::of(line.portName()).whatToDo().contains(QStringLiteral("wait, then connect again")));
}

void tst_PortTrouble::whereNoHolderIsSeenModemManagerMayBeIt()
{
    const PseudoTerminal line;
    const OtherProgram other(QStringLiteral("ModemManager"));
    EVENTUALLY(PortTrouble::of(line.portName()).isModemManagerHere);
    const PortTrouble trouble = PortTrouble::of(line.portName());
    QCOMPARE(trouble.cause, Cause::Unclear);
    QVERIFY2(trouble.whatToDo().startsWith(QStringLiteral("Maybe ModemManager")), qUtf8Printable(trouble.whatToDo()));
}

void tst_PortTrouble::aPortThatMayNotBeOpenedTellsIt()
{
    const group* const dialout = ::getgrnam("dialout");
    if (::geteuid() != 0 || dialout == nullptr) {
        QSKIP("only root can make a port that may not be opened", );
    }
    const ForbiddenPort port(dialout->gr_gid, forGroup);
    QVERIFY(port.isMade);
    const OrdinaryUser user;
    QVERIFY(user.isOrdinary);
    const DebugLines lines;
    const LinkRecorder recorder({port.portName()});
    EVENTUALLY(recorder.info().trouble.has_value());
    QCOMPARE(recorder.state(), StateOpenError);
    QCOMPARE(recorder.info().trouble->cause, Cause::NoRight);
    const QStringList told = lines.linesWith(QStringLiteral("sudo usermod -aG dialout nobody"));
    QCOMPARE(told.size(), 1);
    QVERIFY2(told.constFirst().contains(port.portName()), qUtf8Printable(told.constFirst()));
    // It stays in view after the port has been closed for it.
    EVENTUALLY(!recorder.info().connected);
    QVERIFY(recorder.info().trouble.has_value());
}

void tst_PortTrouble::aHeldPortTellsByWhom()
{
    const LinkOverHeldPort held;
    EVENTUALLY(held.hasToldTrouble());
    QCOMPARE(held.recorder.state(), StateOpenError);
    QCOMPARE(held.recorder.info().trouble->cause, Cause::Busy);
    QCOMPARE(held.recorder.info().trouble->holder, QStringLiteral("tst_PortTrouble"));
}

void tst_PortTrouble::aPortThatGoesTellsItUntilItIsBack()
{
    UnitSimulator unit;
    const LinkRecorder recorder({unit.portName()});
    EVENTUALLY(recorder.state() == StateCoordinatorConnected);
    QVERIFY(!recorder.info().trouble.has_value());
    unit.unplug();
    // The watch calls it lost, whatever the cause.
    EVENTUALLY(recorder.info().trouble.has_value());
    QCOMPARE(recorder.state(), StateCoordinatorLost);
    QCOMPARE(recorder.info().trouble->cause, Cause::Unplugged);
    QVERIFY(unit.plugIn());
    EVENTUALLY(recorder.state() == StateCoordinatorConnected);
    QVERIFY(!recorder.info().trouble.has_value());
}

void tst_PortTrouble::connectingAnewForgetsIt()
{
    LinkOverHeldPort held;
    EVENTUALLY(held.hasToldTrouble());
    held.holder.close();
    held.recorder.port()->open();
    EVENTUALLY(held.recorder.state() == StateSearching);
    QVERIFY(!held.recorder.info().trouble.has_value());
}

void tst_PortTrouble::theCauseIsLookedForOnTheThreadOfThePort()
{
    QSemaphore released;
    const LinkRecorder recorder({portA});
    QMetaObject::invokeMethod(
        recorder.port()->worker(), [&released] { released.acquire(); }, Qt::QueuedConnection);
    recorder.port()->setState(StateOpenError);
    QCoreApplication::processEvents();
    const bool wasFoundElsewhere = recorder.info().trouble.has_value();
    released.release();
    QVERIFY(!wasFoundElsewhere);
    EVENTUALLY(recorder.info().trouble.has_value());
}

void tst_PortTrouble::theAnswerOfAnOlderStateIsDropped()
{
    const PseudoTerminal line;
    const LinkRecorder recorder({line.portName()});
    EVENTUALLY(recorder.state() == StateSearching);
    const DebugLines lines;
    recorder.port()->setState(StateOpenError);
    recorder.port()->setState(StateSearching);
    hearFromWorker(recorder.port());
    QVERIFY(!recorder.info().trouble.has_value());
    QCOMPARE(lines.linesWith(QStringLiteral("can't be opened")), QStringList());
}

void tst_PortTrouble::aCauseThatChangesIsSeenWhenItIsCheckedAgain()
{
    const DebugLines lines;
    LinkOverHeldPort held;
    const LinkRecorder& recorder = held.recorder;
    EVENTUALLY(held.hasToldTrouble());
    QCOMPARE(recorder.info().trouble->holder, QStringLiteral("tst_PortTrouble"));
    held.holder.close();
    const OtherProgram other(QStringLiteral("terminal"), held.line.portName());
    EVENTUALLY((recorder.port()->checkTrouble(), recorder.info().trouble->holder == QStringLiteral("terminal")));
    QCOMPARE(recorder.info().trouble->cause, Cause::Busy);
    QCOMPARE(recorder.state(), StateOpenError);
    QCOMPARE(lines.linesWith(QStringLiteral(" is held by tst_PortTrouble ")).size(), 1);
    QCOMPARE(lines.linesWith(QStringLiteral(" is held by terminal ")).size(), 1);
}

void tst_PortTrouble::aCauseThatHasGoneIsPast()
{
    LinkOverHeldPort held;
    const LinkRecorder& recorder = held.recorder;
    EVENTUALLY(held.hasToldTrouble());
    held.holder.close();
    for (int check = 0; check < 2; ++check) {
        recorder.port()->checkTrouble();
        hearFromWorker(recorder.port());
        QCOMPARE(recorder.info().trouble->cause, Cause::Past);
    }
    QCOMPARE(recorder.info().trouble->whatToDo(), QStringLiteral("Connect again."));
}

void tst_PortTrouble::anAttemptThatFailsMeanwhileIsNotOver()
{
    LinkOverHeldPort held;
    EVENTUALLY(held.hasToldTrouble());
    held.holder.close();
    Port* const port = held.recorder.port();
    port->checkTrouble();
    port->setState(StateOpenError);
    hearFromWorker(port);
    QVERIFY(!port->info().troubleAwaited);
    QVERIFY(port->info().trouble->cause != Cause::Past);
}

void tst_PortTrouble::theEndOfACheckIsToldThoughNothingChanged()
{
    const LinkOverHeldPort held;
    EVENTUALLY(held.hasToldTrouble());
    Port* const port = held.recorder.port();
    hearFromWorker(port);
    QVERIFY(!port->info().troubleAwaited);
    const QSignalSpy told(port, &Port::changed);
    port->checkTrouble();
    QVERIFY(port->info().troubleAwaited);
    hearFromWorker(port);
    QVERIFY(!port->info().troubleAwaited);
    QCOMPARE(told.size(), 1);
}

void tst_PortTrouble::aPortWithoutTroubleIsNotChecked()
{
    const PseudoTerminal line;
    const LinkRecorder recorder({line.portName()});
    EVENTUALLY(recorder.state() == StateSearching);
    const QSignalSpy asked(recorder.port(), &Port::troubleAsked);
    recorder.port()->checkTrouble();
    QCOMPARE(asked.size(), 0);
}

QTEST_GUILESS_MAIN(tst_PortTrouble)
#include "tst_PortTrouble.moc"
