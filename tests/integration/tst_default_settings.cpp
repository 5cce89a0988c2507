#include "model/RelayInfo.h"
#include "support/Eventually.h"
#include "support/WindowOverUnit.h"
#include "support/threadedTestMain.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

/// The delivered default settings on their way from the file through the window into a unit.
class tst_default_settings : public QObject
{
    Q_OBJECT

private slots:
    void theUnitHoldsWhatTheFileSays();
};

void tst_default_settings::theUnitHoldsWhatTheFileSays()
{
    const QTemporaryDir directory;
    const QString formerDirectory = QDir::currentPath();
    QVERIFY(QDir::setCurrent(directory.path()));
    QVERIFY(QFile::copy(QStringLiteral(DELIVERED_FILE), QStringLiteral("DefaultSetting_EN.cfg")));
    RelayInfo delivered;
    QCOMPARE(delivered.loadFromFile(QStringLiteral("DefaultSetting_EN.cfg")), 0);

    WindowOverUnit over;
    QVERIFY(over.waitForChain());
    over.told.clear();
    QStringList shown; // on the result line, one after the other
    const auto ended = [&] {
        if (shown.isEmpty() || shown.last() != over.result()) {
            shown.append(over.result());
        }
        return !over.told.filter(texts::resultWriteScriptsOk()).isEmpty() && !over.isBusy();
    };
    over.trigger("actionFactorySetting");
    QVERIFY(eventually(ended, 60000));
    QCOMPARE(shown, (QStringList{QStringLiteral("Loading default settings started..."),
                                 QStringLiteral("Loading default settings SUCCESSFUL COMPLETE")}));

    const UnitState unit = over.unit.state();
    const QByteArrayList outputs = delivered.makeOutputRecords();
    for (const QByteArray& record : outputs) {
        QCOMPARE(unit.outputs.at(std::size_t(record.at(0))).at(std::size_t(record.at(1))), record.mid(2));
    }
    const QByteArrayList scripts = delivered.makeScriptRecords();
    for (const QByteArray& record : scripts) {
        QCOMPARE(unit.scripts.at(std::size_t(record.at(0))), record.mid(1));
    }
    QVERIFY(QDir::setCurrent(formerDirectory));
}

HUBN_THREADED_TEST_MAIN(tst_default_settings)
#include "tst_default_settings.moc"
