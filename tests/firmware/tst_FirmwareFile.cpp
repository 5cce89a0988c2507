#include "firmware/FirmwareFile.h"
#include "support/OrdinaryUser.h"
#include "support/ScriptedDialogs.h"

#include <QTemporaryDir>
#include <QtTest>

std::optional<FirmwareFile> readFirmwareFile(QFile& file, QWidget* parent, Dialogs& dialogs);

class tst_FirmwareFile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void asksFromTheCurrentDirectoryForItsSuffix();
    void cancelIsSilent();
    void readsWhatTheFileHolds_data();
    void readsWhatTheFileHolds();
    void tooSmallAFileIsRefused_data();
    void tooSmallAFileIsRefused();
    void currentDirectoryStandsBeforeAFullPathToo();
    void unreadableFileIsTold_data();
    void unreadableFileIsTold();
    void fileWithoutRightsIsTold();
    void openFileIsTold();

private:
    QString write(const QByteArray& bytes) const;

    std::unique_ptr<QTemporaryDir> directory;
    const QString boxTitle = QStringLiteral("Ошибка файла прошивки");
};

void tst_FirmwareFile::init()
{
    directory = std::make_unique<QTemporaryDir>();
    QVERIFY(directory->isValid());
}

QString tst_FirmwareFile::write(const QByteArray& bytes) const
{
    QFile file(directory->filePath(QStringLiteral("image %1.crypt")));
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() ? file.fileName() : QString();
}

void tst_FirmwareFile::asksFromTheCurrentDirectoryForItsSuffix()
{
    ScriptedDialogs dialogs;
    chooseFirmwareFile(nullptr, dialogs);
    QCOMPARE(dialogs.questions, QStringList{QStringLiteral("Selection file of firmware|*.crypt")});
}

void tst_FirmwareFile::cancelIsSilent()
{
    ScriptedDialogs dialogs;
    QVERIFY(!chooseFirmwareFile(nullptr, dialogs));
    QVERIFY(dialogs.boxes.isEmpty());
}

void tst_FirmwareFile::readsWhatTheFileHolds_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("three bytes") << QByteArray("\0\r\n", 3);
    QTest::newRow("8 MB") << QByteArray(8 * 1024 * 1024, '\x1A');
}

void tst_FirmwareFile::readsWhatTheFileHolds()
{
    QFETCH(const QByteArray, bytes);
    const QString path = write(bytes);
    ScriptedDialogs dialogs;
    dialogs.openAnswers.append(path);
    const std::optional<FirmwareFile> file = chooseFirmwareFile(nullptr, dialogs);
    QVERIFY(file.has_value());
    QCOMPARE(file->name, path);
    QVERIFY(file->image == bytes);
    QVERIFY(dialogs.boxes.isEmpty());
}

void tst_FirmwareFile::tooSmallAFileIsRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("one byte") << QByteArray("1");
    QTest::newRow("two bytes") << QByteArray("12");
}

void tst_FirmwareFile::tooSmallAFileIsRefused()
{
    QFETCH(const QByteArray, bytes);
    ScriptedDialogs dialogs;
    dialogs.openAnswers.append(write(bytes));
    QVERIFY(!chooseFirmwareFile(nullptr, dialogs));
    QCOMPARE(dialogs.boxes.size(), 1);
    QCOMPARE(dialogs.boxes.constFirst().title, boxTitle);
}

void tst_FirmwareFile::currentDirectoryStandsBeforeAFullPathToo()
{
    const QString path = write("12");
    ScriptedDialogs dialogs;
    dialogs.openAnswers.append(path);
    QVERIFY(!chooseFirmwareFile(nullptr, dialogs));
    QCOMPARE(dialogs.boxes.constFirst().text, QStringLiteral("Файл прошивки ") + QDir::currentPath() +
                                                  QLatin1Char('/') + path +
                                                  QStringLiteral(" содержит недостаточное количество данных!"));
}

void tst_FirmwareFile::unreadableFileIsTold_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("missing") << QStringLiteral("/nowhere/image.crypt");
    QTest::newRow("a directory") << QStringLiteral("/");
}

void tst_FirmwareFile::unreadableFileIsTold()
{
    QFETCH(const QString, path);
    ScriptedDialogs dialogs;
    dialogs.openAnswers.append(path);
    QVERIFY(!chooseFirmwareFile(nullptr, dialogs));
    QCOMPARE(dialogs.boxes.size(), 1);
    QCOMPARE(dialogs.boxes.constFirst().title, boxTitle);
    QCOMPARE(dialogs.boxes.constFirst().text, QStringLiteral("Ошибка открытия файла ") + path);
}

void tst_FirmwareFile::fileWithoutRightsIsTold()
{
    const QString path = write("12345");
    QVERIFY(QFile::setPermissions(path, QFile::WriteOwner));
    QVERIFY(QFile::setPermissions(directory->path(), QFile::Permissions(0x7777)));
    ScriptedDialogs dialogs;
    dialogs.openAnswers.append(path);
    {
        const OrdinaryUser user;
        QVERIFY(user.isOrdinary);
        QVERIFY(!chooseFirmwareFile(nullptr, dialogs));
    }
    QCOMPARE(dialogs.boxes.size(), 1);
    QCOMPARE(dialogs.boxes.constFirst().text, QStringLiteral("Ошибка открытия файла ") + path);
}

void tst_FirmwareFile::openFileIsTold()
{
    QFile file(write("12345"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    ScriptedDialogs dialogs;
    QVERIFY(!readFirmwareFile(file, nullptr, dialogs));
    QCOMPARE(dialogs.boxes.size(), 1);
    QCOMPARE(dialogs.boxes.constFirst().title, boxTitle);
    QCOMPARE(dialogs.boxes.constFirst().text,
             QStringLiteral("Файл ") + file.fileName() + QStringLiteral(" уже открыт!"));
}

QTEST_GUILESS_MAIN(tst_FirmwareFile)
#include "tst_FirmwareFile.moc"
