#pragma once

#include "firmware/Loading.h"
#include "firmware/protocol_boot.h"
#include "link/Transmitter.h"
#include "simulator/UnitSimulator.h"
#include "support/Eventually.h"
#include "texts/texts.h"

#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QRandomGenerator>
#include <QThread>
#include <QtTest>

/// What tests of firmware on its way to a simulated unit have in common.

constexpr int firmwarePatience = 90000; ///< ms; generous, for busy machines

inline QByteArray randomImage(int size)
{
    QRandomGenerator random(quint32(size) + 1);
    QByteArray image(size, '\0');
    for (char& byte : image) {
        byte = char(random.bounded(256));
    }
    return image;
}

inline QPushButton* button(const QWidget* widget, const char* name)
{
    return widget->findChild<QPushButton*>(QLatin1String(name));
}

inline QString barText(const Loading* dialog)
{
    return dialog->findChild<QProgressBar*>(QStringLiteral("progressBar"))->format();
}

/// A loading dialog and a worker on a thread of its own, over a simulated unit.
class LoadingOverUnit : public QObject
{
public:
    explicit LoadingOverUnit(const QVector<UnitFault>& faults = {}, quint32 seed = 1) : worker(new Transmitter)
    {
        unit.setFaults(faults, seed);
        worker->setBootParser(&protocol_boot::parseAnswer);
        worker->moveToThread(&thread);
        connect(&thread, &QThread::finished, worker, &QObject::deleteLater);
        thread.start();
        QMetaObject::invokeMethod(
            worker, [worker = worker, name = unit.portName()] { worker->sl_initialization(worker, name); });
    }

    ~LoadingOverUnit() override
    {
        delete dialog;
        thread.quit();
        thread.wait();
    }
    Q_DISABLE_COPY_MOVE(LoadingOverUnit)

    void show(const QByteArray& image)
    {
        dialog = new Loading;
        connect(dialog, &Loading::sig_SendMessage, worker,
                [worker = worker](const message& mess) { worker->sl_AddRequestInQueue(worker, mess); });
        connect(worker, &Transmitter::sig_SendAnswer, dialog,
                [dialog = dialog](Transmitter*, const message& answer) { dialog->sl_receiveMessage(answer); });
        connect(dialog, &Loading::sig_SendResultOperation, this, [this](const QString& text) { results.append(text); });
        dialog->setParameters(unit.state().address, 57600, QStringLiteral("image.crypt"), image);
        dialog->show();
    }

    /// Waits until a run has ended, well or not.
    bool waitForEnd() const
    {
        return eventually([this] { return dialog.isNull() || hasFailed(); }, firmwarePatience);
    }
    bool hasFailed() const
    {
        return dialog != nullptr && dialog->isVisible() &&
               button(dialog, "ButtonAbort")->text() == texts::buttonClose();
    }
    /// A load whose unit falls silent, and repeats until one ends in the right image: the first of them may fail as
    /// well.
    void failAndRepeat(const QByteArray& image)
    {
        show(image);
        QVERIFY(waitForEnd());
        QVERIFY(hasFailed());
        QCOMPARE(barText(dialog), texts::firmwareNotResponding());
        QVERIFY(!unit.state().firmwareComplete);
        for (int run = 0; run < 20 && hasFailed(); ++run) {
            button(dialog, "ButtonRepeat")->click();
            QVERIFY(waitForEnd());
        }
        QVERIFY(dialog.isNull());
        QVERIFY(isComplete(image));
    }
    bool isComplete(const QByteArray& image) const
    {
        const UnitState state = unit.state();
        return state.firmwareComplete && state.firmware == image;
    }

    UnitSimulator unit;
    QPointer<Loading> dialog;
    QStringList results;

private:
    QThread thread;
    Transmitter* worker;
};
