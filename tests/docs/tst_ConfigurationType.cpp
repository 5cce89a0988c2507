#include "model/RelayInfo.h"

#include <QDir>
#include <QFile>
#include <QMimeDatabase>
#include <QTemporaryDir>
#include <QtTest>

/// The type of files that is installed for desktops: a configuration is known as one, and no other program's file is.
class tst_ConfigurationType : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void aSavedConfigurationIsKnown_data();
    void aSavedConfigurationIsKnown();
    void theDefaultSettingsAreKnownByTheirName();
    void filesOfOtherProgramsAreNotTaken_data();
    void filesOfOtherProgramsAreNotTaken();

private:
    QString typeOf(const QString& name) const
    {
        return QMimeDatabase().mimeTypeForFile(directory.filePath(name)).name();
    }
    void write(const QString& name, const QByteArray& content) const
    {
        QFile file(directory.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(content), qint64(content.size()));
    }

    const QTemporaryDir directory;
};

namespace
{

QString configurationType()
{
    return QStringLiteral("application/x-hubn-nx-q-configuration");
}

} // namespace

/// A desktop with nothing but this type beside those that Qt knows.
void tst_ConfigurationType::initTestCase()
{
    const QString packages = directory.filePath(QStringLiteral("share/mime/packages"));
    QVERIFY(QDir().mkpath(packages));
    QVERIFY(QFile::copy(QStringLiteral(TYPE_FILE), packages + QLatin1String("/hubn-manager.xml")));
    qputenv("XDG_DATA_HOME", QFile::encodeName(directory.filePath(QStringLiteral("share"))));
    qputenv("XDG_DATA_DIRS", QFile::encodeName(directory.path()));
    QVERIFY(QMimeDatabase().mimeTypeForName(configurationType()).isValid());
}

void tst_ConfigurationType::aSavedConfigurationIsKnown_data()
{
    QTest::addColumn<QString>("comment");
    QTest::addColumn<QString>("name");
    QTest::newRow("without a comment") << QString() << QStringLiteral("site.cfg");
    QTest::newRow("with a comment") << QStringLiteral("Hall, floor 2\n\nThe siren is new.")
                                    << QStringLiteral("hall.cfg");
    QTest::newRow("with a long comment") << QString(4000, QLatin1Char('x')) << QStringLiteral("long.cfg");
    QTest::newRow("by another name") << QString() << QStringLiteral("site");
}

void tst_ConfigurationType::aSavedConfigurationIsKnown()
{
    QFETCH(QString, comment);
    QFETCH(QString, name);
    RelayInfo model;
    model.setComment(comment);
    QCOMPARE(model.saveToFile(directory.filePath(name)), int(RelayInfo::FileOk));
    QCOMPARE(typeOf(name), configurationType());
    QVERIFY(QMimeDatabase().mimeTypeForName(configurationType()).inherits(QStringLiteral("text/plain")));
}

void tst_ConfigurationType::theDefaultSettingsAreKnownByTheirName()
{
    const QString name = QStringLiteral("DefaultSetting_EN.cfg");
    write(name, "anything");
    QCOMPARE(typeOf(name), configurationType());
}

void tst_ConfigurationType::filesOfOtherProgramsAreNotTaken_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("keys and values") << QByteArray("[Configuration]\nsize=3\n");
    QTest::newRow("a comment of another kind") << QByteArray("[Comment]\r\nmine\r\n\r\n[Options]\r\nsize=3\r\n");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("bytes") << QByteArray("\x00\x01\xFF", 3);
}

void tst_ConfigurationType::filesOfOtherProgramsAreNotTaken()
{
    QFETCH(QByteArray, content);
    write(QStringLiteral("other.cfg"), content);
    QVERIFY(typeOf(QStringLiteral("other.cfg")) != configurationType());
}

QTEST_GUILESS_MAIN(tst_ConfigurationType)
#include "tst_ConfigurationType.moc"
