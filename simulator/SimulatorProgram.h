#pragma once

#include "simulator/UnitSimulator.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QTextStream>

#include <memory>

class QCommandLineParser;
class QSocketNotifier;

/// The program hubn-unit-simulator: a simulated unit with a command line, a state file and commands on the standard
/// input. Lives on the main thread. The unit's state is saved when the program is asked to, and when it ends.
class SimulatorProgram : public QObject
{
    Q_OBJECT
public:
    SimulatorProgram();
    ~SimulatorProgram() override;

    /// To be called before any thread exists: the signals that end the program or make it save are taken from there on
    /// by a descriptor.
    static bool blockSignals();

    /// False if the program can't run as asked; the reason has been printed. May end the process: --help, --version.
    bool start(const QStringList& arguments);

private:
    Q_DISABLE_COPY_MOVE(SimulatorProgram)

    bool initialState(const QCommandLineParser& parser, UnitState& state);
    bool faults(const QCommandLineParser& parser, QVector<UnitFault>& rules);
    bool listenToSignals();
    void receiveSignal();
    void receiveInput();
    void obey(const QString& command);
    void trace(const UnitRequest& request);
    bool save();
    void finish();
    bool complain(const QString& text);

    std::unique_ptr<UnitSimulator> unit;
    QString stateFile;
    QTextStream output;
    QTextStream errors;
    int signalDescriptor = -1;
    QSocketNotifier* signalNotifier = nullptr;
    QSocketNotifier* inputNotifier = nullptr;
    QByteArray typed;
};
