#pragma once

#include <QMetaType>
#include <QString>

/// Why a serial port can't be used, as far as the system tells, and what to do about it.
///
/// A plain value, found by of() once the opening of a port has failed. Files of the system are read for that, those of
/// all processes among them where nothing else tells who holds the port: some 10 ms, on any thread. The device itself
/// isn't touched.
struct PortTrouble
{
    enum class Cause : quint8
    {
        Unplugged, ///< there is no such device
        NoRight,   ///< the user may not open it
        Busy,      ///< another program has it
        Unclear,   ///< another program has it that can't be seen, or it is faulty
        Past,      ///< there was a cause, which isn't there any more
    };

    Cause cause = Cause::Unclear;
    QString device; ///< its path

    QString user;             ///< without the right
    QString owner;            ///< of the device
    QString group;            ///< whose members have the right; empty if there is none that a user should be in
    bool awaitsLogin = false; ///< the user is a member, but wasn't at the last login

    QString holder;                  ///< the program that has it
    qint64 process = 0;              ///< of the holder
    bool isModemManagerHere = false; ///< it takes new ports, and no one else sees which

    /// With `isGone` the device has been lost, though its name may last a little longer.
    static PortTrouble of(const QString& portName, bool isGone = false);

    /// Takes into account what was found before, where nobody has tried to open the port since: a cause that was seen
    /// then and isn't now is past.
    void compareWith(const PortTrouble& before);

    QString whatIsWrong() const; ///< one sentence
    QString whatToDo() const;    ///< another one
};

Q_DECLARE_METATYPE(PortTrouble)
