#include "link/PortTrouble.h"

#include "texts/texts.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QLockFile>
#include <QVector>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <unistd.h>

namespace
{

QString modemManager()
{
    return QStringLiteral("ModemManager");
}

QString deviceOf(const QString& portName)
{
    return portName.startsWith(QLatin1Char('/')) ? portName : QStringLiteral("/dev/") + portName;
}

bool mayOpen(const QString& device)
{
    return ::faccessat(AT_FDCWD, QFile::encodeName(device).constData(), R_OK | W_OK, AT_EACCESS) == 0 ||
           (errno != EACCES && errno != EPERM);
}

struct User
{
    QString name;
    gid_t group = 0;
};

User effectiveUser()
{
    std::array<char, 4096> texts{};
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::geteuid(), &entry, texts.data(), texts.size(), &found) != 0 || found == nullptr) {
        return {QString::number(::geteuid()), ::getegid()};
    }
    return {QString::fromLocal8Bit(entry.pw_name), entry.pw_gid};
}

/// Whether the user database has a user in a group, whatever the login that still lasts knows.
bool isMember(const User& user, gid_t group)
{
    std::array<gid_t, 256> groups{};
    int count = int(groups.size());
    if (::getgrouplist(user.name.toLocal8Bit().constData(), user.group, groups.data(), &count) < 0) {
        return false;
    }
    return std::find(groups.begin(), groups.begin() + count, group) != groups.begin() + count;
}

void tellRight(PortTrouble& trouble)
{
    const QFileInfo device(trouble.device);
    const User user = effectiveUser();
    trouble.user = user.name;
    trouble.owner = device.owner();
    const bool mayGroup = device.permission(QFileDevice::ReadGroup | QFileDevice::WriteGroup);
    // Nobody gets into the group of the administrator for the sake of a port.
    if (mayGroup && device.groupId() != 0) {
        trouble.group = device.group();
        trouble.awaitsLogin = isMember(user, device.groupId());
    }
}

QString programOf(qint64 process)
{
    QFile name(QStringLiteral("/proc/%1/comm").arg(process));
    return name.open(QIODevice::ReadOnly) ? QString::fromLocal8Bit(name.readAll()).trimmed() : QString();
}

QVector<qint64> processes()
{
    QVector<qint64> found;
    const QStringList names = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& name : names) {
        if (const qint64 process = name.toLongLong(); process > 0) {
            found.append(process);
        }
    }
    return found;
}

/// The process that the port's lock file names; 0 if there is none, or if it has ended.
qint64 processOfLock(const QString& portName, QString& program)
{
    // Where serial ports are locked, by QSerialPort as by others.
    const QString file = QStringLiteral("/LCK..") + QString(portName).replace(QLatin1Char('/'), QLatin1Char('_'));
    for (const auto* const folder : {"/var/lock", "/run/lock", "/tmp"}) {
        qint64 process = 0;
        QString host;
        const QLockFile lock(QLatin1String(folder) + file);
        if (lock.getLockInfo(&process, &host, &program) && process > 0 &&
            (::kill(pid_t(process), 0) == 0 || errno == EPERM)) {
            return process;
        }
    }
    return 0;
}

bool hasOpen(qint64 process, const QString& device)
{
    QDirIterator files(QStringLiteral("/proc/%1/fd").arg(process),
                       QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot);
    while (files.hasNext()) {
        if (QFile::symLinkTarget(files.next()) == device) {
            return true;
        }
    }
    return false;
}

/// Finds the program that has the device, if it may be seen.
void tellHolder(const QString& portName, PortTrouble& trouble)
{
    trouble.process = processOfLock(portName, trouble.holder);
    if (trouble.process == 0) {
        const QString device = QFileInfo(trouble.device).canonicalFilePath();
        const QVector<qint64> all = processes();
        const auto found = std::find_if(all.cbegin(), all.cend(), [&device](qint64 process) {
            return process != ::getpid() && hasOpen(process, device);
        });
        trouble.process = found != all.cend() ? *found : 0;
        trouble.isModemManagerHere =
            std::any_of(all.cbegin(), all.cend(), [](qint64 process) { return programOf(process) == modemManager(); });
    }
    if (trouble.process != 0) {
        trouble.cause = PortTrouble::Cause::Busy;
        const QString program = programOf(trouble.process);
        trouble.holder = program.isEmpty() ? trouble.holder : program;
    }
}

} // namespace

PortTrouble PortTrouble::of(const QString& portName, bool isGone)
{
    PortTrouble trouble;
    trouble.device = deviceOf(portName);
    if (isGone || !QFileInfo::exists(trouble.device)) {
        trouble.cause = Cause::Unplugged;
    } else if (!mayOpen(trouble.device)) {
        trouble.cause = Cause::NoRight;
        tellRight(trouble);
    } else {
        tellHolder(portName, trouble);
    }
    return trouble;
}

void PortTrouble::compareWith(const PortTrouble& before)
{
    if (cause == Cause::Unclear && before.cause != Cause::Unclear) {
        cause = Cause::Past;
    }
}

QString PortTrouble::whatIsWrong() const
{
    switch (cause) {
    case Cause::Unplugged:
        return texts::troubleUnplugged().arg(device);
    case Cause::NoRight:
        return group.isEmpty() ? texts::troubleNoRightOwner().arg(user, device, owner)
                               : texts::troubleNoRightGroup().arg(user, device, group);
    case Cause::Busy:
        return texts::troubleBusy().arg(device, holder, QString::number(process));
    case Cause::Past:
        return texts::troublePast().arg(device);
    default:
        return texts::troubleUnclear().arg(device);
    }
}

QString PortTrouble::whatToDo() const
{
    switch (cause) {
    case Cause::Unplugged:
        return texts::troublePlugIn();
    case Cause::NoRight:
        if (group.isEmpty()) {
            return texts::troubleAskOwner().arg(owner);
        }
        return awaitsLogin ? texts::troubleLogIn() : texts::troubleJoinGroup().arg(group, user);
    case Cause::Busy:
        return holder == modemManager() ? texts::troubleModemManager() : texts::troubleEndHolder().arg(holder);
    case Cause::Past:
        return texts::troubleConnect();
    default:
        return isModemManagerHere ? texts::troubleMaybeModemManager() : texts::troubleTryAnew();
    }
}
