// How close the program comes to the pace of the wire, where the unit's side keeps ten bit times a byte in both
// directions: beside a bare loop that sends and takes the same bytes over the same wire and does nothing else.

#include "benchmarks/BareLoop.h"
#include "benchmarks/Figures.h"
#include "benchmarks/Units.h"
#include "benchmarks/WireTime.h"
#include "firmware/Loading.h"
#include "firmware/protocol_boot.h"
#include "link/FormChoiceCoordinator.h"
#include "simulator/UnitSimulator.h"

#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <cmath>

namespace
{

/// Runs an operation of the form over a paced unit and compares the time between its first request and its end with
/// that of the loop over another unit, as it stood before. The watch, twice a second, is part of both.
Figure overTheWire(const QString& what, UnitSimulator& unit, const std::function<void()>& start, QEventLoop& end)
{
    constexpr double bar = 1.02;
    const UnitState before = unit.state();
    QTimer::singleShot(0, &end, [&] {
        unit.clearRequests();
        start();
    });
    end.exec();
    const auto stopped = std::chrono::steady_clock::now();
    const QVector<UnitRequest> requests = unit.requests();
    if (requests.isEmpty()) {
        return failure(what, QStringLiteral("nothing was sent"));
    }
    UnitSimulator second(before);
    second.setPace(UnitSimulator::OfTheWire);
    const double loop = bareLoop::timeOver(second, requests);
    if (!std::isfinite(loop)) {
        return failure(what, QStringLiteral("the bare loop broke off"));
    }
    // A request is noted once its last byte is there; its own way over the wire lies before the note.
    const double measured = std::chrono::duration<double, std::milli>(stopped - requests.first().received).count() +
                            double(requests.first().frame.size()) * 10 * 1000 / wire::baudRate;
    return {what,
            QStringLiteral("%1 ms").arg(measured, 0, 'f', 0),
            QStringLiteral("%1 ms, a bare loop; %2 ms, the wire")
                .arg(loop, 0, 'f', 0)
                .arg(wire::timeOf(requests), 0, 'f', 0),
            measured / loop,
            QStringLiteral("times"),
            bar,
            Figure::AtMost};
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
    figures.push_back(overTheWire(
        QStringLiteral("full reading: terminals, 70 outputs, 32 scripts at 57600"), unit,
        [&] { form.on_buttonChoicePort_clicked(); }, end));

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
        result = failure(result.what, QStringLiteral("the image did not arrive"));
    }
    return result;
}

const Benchmark firmwareBenchmark(QStringLiteral("firmware"), [] { return std::vector<Figure>{firmware()}; });
const Benchmark wireBenchmark(QStringLiteral("wire"), run);

} // namespace
