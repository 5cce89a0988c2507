#pragma once

#include "domain/terminals.h"

#include <QObject>
#include <QString>

#include <optional>

class message;

/// A sequence of exchanges with the unit behind the current port: the answer to one request decides about the next.
///
/// An operation owns no widget and no port: what it wants sent and shown goes out as signals, in the order in which
/// it is to happen; whoever owns it gives it the answers to its requests, each step once, when it has succeeded or its
/// last attempt has failed. A failed step doesn't end a sequence unless the operation says so. Belongs to a
/// CoordinatorLink and its thread.
class DeviceOperation : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Before the first call there is no current port, and nothing can be sent.
    virtual void setCoordinator(quint8 address)
    {
        coordinatorAddress = address;
    }

    /// Whether answers to requests of this type belong here.
    virtual bool handles(int requestType) const = 0;

    /// Whether an answer ends its step, and doesn't merely make the operation ask again.
    virtual bool endsStep(const message& answer) const;

    virtual void takeAnswer(const message& answer, bool failed) = 0;

signals:
    void requestReady(const message& request);

    // The busy state.
    void begun(const QString& text, int minimum, int maximum);
    void textChanged(const QString& text);
    void maximumChanged(int maximum);
    void stepDone();
    void shown();
    void hidden();
    /// It was shown but there is nothing to wait for.
    void nothingSent();

    /// One text for the status line.
    void resultReady(const QString& result);

protected:
    bool hasPort() const
    {
        return coordinatorAddress.has_value();
    }
    /// It is noCoordinator without a port.
    quint8 coordinator() const
    {
        return coordinatorAddress.value_or(noCoordinator);
    }

    /// One line of a result: `success`, or `failure` with the number of errors.
    static QString outcome(const QString& success, const QString& failure, int errors);

private:
    std::optional<quint8> coordinatorAddress;
};
