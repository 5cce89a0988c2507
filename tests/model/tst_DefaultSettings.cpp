#include "defaultSettings.h"
#include "model/RelayInfo.h"
#include "model/ScriptRules.h"
#include "support/ModelInvariants.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace
{

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString delivered()
{
    return QString::fromUtf8(DELIVERED_FILE);
}

} // namespace

/// The default settings that are delivered beside the program.
class tst_DefaultSettings : public QObject
{
    Q_OBJECT

private slots:
    void theDeliveredFileIsWhatTheWriterMakes();
    void theDeliveredFileIsReadWithoutAnError();
    void everyScriptOfAnOutputHasATrigger();
    void fireAlarmPulsatesTheSiren();
    void buttonsArmAndDisarm();
    void theDeviceKeepsThem();
};

void tst_DefaultSettings::theDeliveredFileIsWhatTheWriterMakes()
{
    const QTemporaryDir directory;
    RelayInfo model;
    fillDefaultSettings(model);
    const QString path = directory.filePath(QStringLiteral("made.cfg"));
    QCOMPARE(model.saveToFile(path), 0);
    QVERIFY(!contents(path).isEmpty());
    QCOMPARE(contents(delivered()), contents(path));
}

void tst_DefaultSettings::theDeliveredFileIsReadWithoutAnError()
{
    RelayInfo model;
    QCOMPARE(model.loadFromFile(delivered()), 0);
    QCOMPARE(model.errorCount(), 0);
    QCOMPARE(model.groups().size(), 1);
    QCOMPARE(brokenInvariant(model), QString());
}

void tst_DefaultSettings::everyScriptOfAnOutputHasATrigger()
{
    RelayInfo model;
    QCOMPARE(model.loadFromFile(delivered()), 0);
    for (const RelayInformationPtr& output : std::as_const(model.groups().constFirst()->outputs)) {
        for (const ScriptInfoPtr& script : std::as_const(output->activatedScripts)) {
            QVERIFY2(!script->notActive, qPrintable(script->name));
        }
    }
    QVERIFY(!model.findOutput(0, 0)->activatedScripts.isEmpty());
}

void tst_DefaultSettings::fireAlarmPulsatesTheSiren()
{
    RelayInfo model;
    QCOMPARE(model.loadFromFile(delivered()), 0);
    const ScriptInfoPtr fire = model.findOutput(0, 0)->activatedScripts.first();
    QCOMPARE(fire->stateChannel->name, QStringLiteral("Alarm (fire)"));
    QCOMPARE(fire->mode->name, QStringLiteral("Pulsation (period of 1 sec.)"));
    QCOMPARE(fire->duration->name, QStringLiteral("No limit"));
    QCOMPARE(fire->numberChannels.count(true), 4);
}

void tst_DefaultSettings::buttonsArmAndDisarm()
{
    RelayInfo model;
    QCOMPARE(model.loadFromFile(delivered()), 0);
    const QList<ScriptInfoPtr> scripts = model.findOutput(0, 2)->activatedScripts;
    QCOMPARE(scripts.size(), 2);
    QCOMPARE(scripts.at(0)->stateChannel->linked->name, QStringLiteral("Button 2(Arm)"));
    QCOMPARE(scripts.at(0)->mode->name, QStringLiteral("Activation"));
    QCOMPARE(scripts.at(1)->stateChannel->linked->name, QStringLiteral("Button 3(Disarm)"));
    QCOMPARE(scripts.at(1)->mode->name, QStringLiteral("Deactivation"));
}

void tst_DefaultSettings::theDeviceKeepsThem()
{
    RelayInfo model;
    QCOMPARE(model.loadFromFile(delivered()), 0);
    RelayInfo read;
    read.readScriptRecords(model.makeScriptRecords());
    read.readOutputRecords(model.makeOutputRecords());
    QCOMPARE(read.makeScriptRecords(), model.makeScriptRecords());
    QCOMPARE(read.makeOutputRecords(), model.makeOutputRecords());
    for (int i = 0; i < 32; ++i) {
        // The very rows come back: no state is left to a row without a name.
        QCOMPARE(read.stateChannels().indexOf(read.scripts().at(i)->stateChannel),
                 model.stateChannels().indexOf(model.scripts().at(i)->stateChannel));
    }
}

QTEST_GUILESS_MAIN(tst_DefaultSettings)
#include "tst_DefaultSettings.moc"
