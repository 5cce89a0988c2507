#include "model/RelayInfo.h"
#include "support/ModelOfUnit.h"
#include "support/RandomUnit.h"
#include "support/WindowOverUnit.h"
#include "support/rounds.h"
#include "support/threadedTestMain.h"

#include <QFile>
#include <QLoggingCategory>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QtTest>

namespace
{

QByteArray asFile(const RelayInfo& model)
{
    const QString path = QStringLiteral("model.cfg");
    model.saveToFile(path);
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The coordinator form over a simulated unit, with a model but without a window: the way of the records alone.
class FormOverUnit
{
public:
    FormOverUnit() : form({[name = unit.portName()] { return QStringList{name}; }, {}})
    {
        QObject::connect(&form, &FormChoiceCoordinator::sig_sendListTerminalsOnForm, &form,
                         [this](const QByteArrayList& records) { model.readTerminalRecords(records); });
        QObject::connect(&form, &FormChoiceCoordinator::sig_sendReadConfigOnForm, &form,
                         [this](const QByteArrayList& records) {
                             model.readOutputRecords(records);
                             model.removeIdleGroups();
                         });
        QObject::connect(&form, &FormChoiceCoordinator::sig_sendReadScriptOnForm, &form,
                         [this](const QByteArrayList& records) { model.readScriptRecords(records); });
    }

    Q_DISABLE_COPY_MOVE(FormOverUnit)
    ~FormOverUnit() = default;

    bool waitForTerminals()
    {
        QSignalSpy found(&form, &FormChoiceCoordinator::sig_sendListTerminalsOnForm);
        return found.wait(60000);
    }

    bool searchTerminals()
    {
        form.on_buttonChoicePort_clicked();
        return waitForTerminals();
    }

    /// Outputs and scripts from the unit into the model.
    bool read()
    {
        form.sl_PreOperationReadConfigAndScript();
        return waitForResult();
    }

    bool write(const RelayInfo& configured)
    {
        form.sl_PreOperationWriteConfigAndScript(configured.makeOutputRecords(), configured.makeScriptRecords());
        return waitForResult();
    }

    UnitSimulator unit;
    RelayInfo model;
    FormChoiceCoordinator form;

private:
    bool waitForResult()
    {
        QSignalSpy told(&form, &FormChoiceCoordinator::sig_sendResultOperation);
        if (!told.wait(60000)) {
            return false;
        }
        const QString result = told.constFirst().constFirst().toString();
        return result == texts::resultReadOutputsOk() + QLatin1Char('\n') + texts::resultReadScriptsOk() ||
               result == texts::resultWriteOutputsOk() + QLatin1Char('\n') + texts::resultWriteScriptsOk();
    }
};

void forget(UnitSimulator& unit)
{
    unit.change([](UnitState& state) {
        state.outputs = UnitState::emptyOutputs();
        state.scripts = UnitState::emptyScripts();
    });
}

} // namespace

/// What is written to a unit is what is read from it again.
class tst_roundtrip : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void aThousandConfigurationsSurviveWritingAndReading_data();
    void aThousandConfigurationsSurviveWritingAndReading();
    void configurationsSurviveTheWayThroughTheWindow();
};

void tst_roundtrip::initTestCase()
{
    // The workers tell each of half a million packets.
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
}

void tst_roundtrip::aThousandConfigurationsSurviveWritingAndReading_data()
{
    QTest::addColumn<quint32>("first");
    for (quint32 first = 1; first <= quint32(rounds(1000)); first += 50) {
        QTest::addRow("seeds %u to %u", first, first + 49) << first;
    }
}

void tst_roundtrip::aThousandConfigurationsSurviveWritingAndReading()
{
    QFETCH(const quint32, first);
    FormOverUnit over;
    QVERIFY(over.waitForTerminals());
    for (quint32 seed = first; seed < first + 50; ++seed) {
        const QByteArray which = "seed " + QByteArray::number(seed);
        const UnitState configuration = RandomUnit(seed).draw();
        RelayInfo configured;
        fill(configured, configuration);
        over.unit.change([&](UnitState& state) { state.terminals = configuration.terminals; });
        QVERIFY2(over.searchTerminals(), which.constData());

        forget(over.unit);
        QVERIFY2(over.write(configured), which.constData());
        QVERIFY2(over.unit.state().outputs == configuration.outputs, which.constData());
        QVERIFY2(over.unit.state().scripts == configuration.scripts, which.constData());
        QVERIFY2(over.read(), which.constData());
        QVERIFY2(asFile(over.model) == asFile(configured), which.constData());
    }
}

void tst_roundtrip::configurationsSurviveTheWayThroughTheWindow()
{
    WindowOverUnit over;
    QVERIFY(over.waitForChain());
    for (quint32 seed = 2001; seed <= 2030; ++seed) {
        const QByteArray which = "seed " + QByteArray::number(seed);
        const UnitState before = RandomUnit(seed).draw();
        over.unit.setState(before);
        over.told.clear();
        over.form()->on_buttonChoicePort_clicked();
        QVERIFY2(over.waitForChain(), which.constData());
        forget(over.unit);
        QVERIFY2(over.write(), which.constData());
        QVERIFY2(over.unit.state().outputs == before.outputs, which.constData());
        QVERIFY2(over.unit.state().scripts == before.scripts, which.constData());
    }
}

HUBN_THREADED_TEST_MAIN(tst_roundtrip)
#include "tst_roundtrip.moc"
