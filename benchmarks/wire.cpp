// How close the program comes to the pace of the wire: the unit's side keeps ten bit times a byte in both directions,
// so what is missing to 1 is the program's own time between an answer and the next request.

#include "benchmarks/Figures.h"
#include "benchmarks/Units.h"
#include "benchmarks/WireTime.h"
#include "firmware/Loading.h"
#include "firmware/protocol_boot.h"
#include "link/FormChoiceCoordinator.h"
#include "simulator/UnitSimulator.h"

#include <QEventLoop>
#include <QFile>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <iterator>

namespace
{

/// Runs an operation of the form over a paced unit and compares the time between its first request and its end with the
/// time that its bytes take on the wire. The watch, twice a second, is part of both.
Figure overTheWire(const QString& what, UnitSimulator& unit, const std::function<void()>& start, QEventLoop& end)
{
    std::chrono::steady_clock::time_point stopped;
    QTimer::singleShot(0, &end, [&] {
        unit.clearRequests();
        start();
    });
    end.exec();
    stopped = std::chrono::steady_clock::now();
    const QVector<UnitRequest> requests = unit.requests();
    if (requests.isEmpty()) {
        return wire::figure(what + QStringLiteral(": nothing was sent"), 0, 1, 0.95);
    }
    // A request is noted once its last byte is there; its own way over the wire lies before the note.
    const double measured = std::chrono::duration<double, std::milli>(stopped - requests.first().received).count() +
                            double(requests.first().frame.size()) * 10 * 1000 / wire::baudRate;
    return wire::figure(what, wire::timeOf(requests), measured, 0.95);
}

std::vector<Figure> run()
{
    const wire::ProcessorsAwake awake;
    UnitSimulator unit(units::installation(2000));
    unit.setPace(UnitSimulator::OfTheWire);
    FormChoiceCoordinator form({[&] { return QStringList{unit.portName()}; }, {}});

    // The first terminals arrive by themselves once the coordinator is found.
    QEventLoop end;
    QObject::connect(&form, &FormChoiceCoordinator::sig_sendListTerminalsOnForm, &end, &QEventLoop::quit);
    end.exec();

    std::vector<Figure> figures;
    QObject::disconnect(&form, nullptr, &end, nullptr);
    QObject::connect(&form, &FormChoiceCoordinator::sig_sendListTerminalsOnForm, &form,
                     &FormChoiceCoordinator::sl_PreOperationReadConfigAndScript);
    QObject::connect(&form, &FormChoiceCoordinator::sig_sendReadScriptOnForm, &end, &QEventLoop::quit);
    figures.push_back(wire::middleOf([&] {
        return overTheWire(
            QStringLiteral("full reading: terminals, 70 outputs, 32 scripts at 57600"), unit,
            [&] { form.on_buttonChoicePort_clicked(); }, end);
    }));

    QObject::disconnect(&form, nullptr, &end, nullptr);
    QObject::connect(&form, &FormChoiceCoordinator::sig_sendReadLogOnForm, &end,
                     [&](const QByteArrayList&, bool last) { last ? end.quit() : void(); });
    form.coordinatorLink().forceLogReading();
    figures.push_back(overTheWire(
        QStringLiteral("log of 2,000 records at 57600"), unit, [&] { form.sl_SendRequestBeginReadLog(); }, end));
    return figures;
}

/// An image to the bootloader, from the request to enter it to its last answer.
Figure firmware()
{
    constexpr int imageSize = 200000;
    const wire::ProcessorsAwake awake;
    UnitSimulator unit(units::installation(0));
    unit.setPace(UnitSimulator::OfTheWire);
    FormChoiceCoordinator form({[&] { return QStringList{unit.portName()}; }, {}}, protocol_boot::parseAnswer);
    QEventLoop end;
    QObject::connect(&form, &FormChoiceCoordinator::sig_sendListTerminalsOnForm, &end, &QEventLoop::quit);
    end.exec();

    auto* loading = new Loading;
    QByteArray image(imageSize, '\0');
    for (int i = 0; i < image.size(); ++i) {
        image[i] = char(i * 7);
    }
    loading->setParameters(form.currentAddress(), form.currentBaudrate(), QStringLiteral("image.crypt"), image);
    QObject::connect(loading, &Loading::sig_SendMessage, &form, &FormChoiceCoordinator::sl_SendRequestOnCurrentPort);
    QObject::connect(&form, &FormChoiceCoordinator::sig_sendAnswerFirmWare, loading, &Loading::sl_receiveMessage);
    QObject::connect(loading, &QDialog::finished, &end, &QEventLoop::quit);
    form.sl_CurrentLoadingFirmwareIsRunning(true);
    Figure result = overTheWire(
        QStringLiteral("firmware of 200,000 bytes at 57600"), unit, [&] { loading->open(); }, end);
    if (unit.state().firmware != image) {
        result.ratio = 0;
        result.reference = QStringLiteral("the image did not arrive");
    }
    return result;
}

const Benchmark firmwareBenchmark(QStringLiteral("firmware"), [] { return std::vector<Figure>{firmware()}; });
const Benchmark wireBenchmark(QStringLiteral("wire"), run);

} // namespace
