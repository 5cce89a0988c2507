#include "model/Device.h"
#include "support/DebugLines.h"
#include "support/OrdinaryUser.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace
{

const char* const englishName = "Devices_EN.csv";
const char* const russianName = "Devices_RU.csv";

/// The built-in models in file order: name, the four numbers, count of outputs.
struct Model
{
    const char* name;
    int terminalClass;
    int version;
    int type;
    int characteristic;
    int outputs;
};

const Model builtIn[] = {
    {"HUBN-NX-QTR", 0x0, 0x4, 0x22, 0x1F, 1},
    {"HUBN-NX-QTR vers.1", 0x0, 0x5, 0x23, 0x1F, 1},
    {"HUBN-NX-QTR vers.2", 0x0, 0xA, 0x23, 0x1F, 1},
    {"HUBN-NX-485 vers.1", 0x0, 0x7, 0x1A, 0x1F, 1},
    {"HUBN-NX-Q", 0x0, 0x6, 0x1A, 0x1F, 1},
    {"KV-NX", 0x1, 0x1, 0x41, 0x10, 1},
    {"LMD-NX", 0x1, 0x1, 0x51, 0x10, 1},
    {"WFG-NX", 0x1, 0x1, 0x85, 0x10, 1},
    {"WFG-NX vers.1", 0x1, 0x2, 0x81, 0x10, 1},
    {"TQ-NX", 0x1, 0x5, 0x21, 0x10, 1},
    {"TQ-NX vers.1", 0x1, 0x6, 0x25, 0x20, 2},
    {"TQ-NX vers.2", 0x1, 0x7, 0x21, 0x10, 1},
    {"TQ-NX vers.3", 0x1, 0x6, 0x21, 0x10, 1},
    {"TQ-NX vers.4", 0x1, 0x8, 0x20, 0x10, 1},
    {"Selen-12-NX", 0x1, 0x4, 0x11, 0x10, 1},
    {"Selen-19NX", 0x1, 0x5, 0x11, 0x10, 1},
    {"Selen-Z2-NX", 0x1, 0x6, 0x10, 0x10, 1},
    {"Selen-12B-NX", 0x1, 0x7, 0x11, 0x10, 1},
    {"Ardeko-8-NX", 0x1, 0x2, 0x11, 0x10, 1},
    {"Ardeko-8B-NX", 0x1, 0x3, 0x11, 0x10, 1},
    {"Ardeko-Z2-NX", 0x1, 0x8, 0x10, 0x20, 2},
    {"Ardeko-4-NX", 0x1, 0x7, 0x10, 0x10, 1},
    {"Ardeko-5-NX", 0x1, 0x5, 0x10, 0x10, 1},
    {"Ardeko-6-NX", 0x1, 0x9, 0x10, 0x10, 1},
    {"Ardeko-7-NX", 0x1, 0x5, 0x60, 0x20, 2},
    {"Moriz-NX", 0x1, 0x1, 0x10, 0x20, 2},
    {"Vitrex-3NX", 0x1, 0x3, 0x31, 0x10, 1},
    {"Klir-NX", 0x1, 0x6, 0x31, 0x10, 1},
    {"Dorn-NX(single-channel)", 0x1, 0x4, 0x31, 0x10, 1},
    {"Dorn-NX(two-channel)", 0x1, 0x4, 0x31, 0x20, 2},
    {"PaneGroups-NX", 0x1, 0x1, 0x60, 0x20, 2},
    {"Haldeon-NX", 0x2, 0x1, 0x41, 0x20, 2},
    {"Haldeon-T-NX", 0x2, 0x1, 0x31, 0x10, 1},
    {"Haldeon-K-NX", 0x2, 0x1, 0x50, 0x20, 2},
    {"Haldeon-U-NX", 0x2, 0x2, 0x52, 0x20, 2},
    {"YF-NX", 0x2, 0x1, 0x1A, 0x10, 1},
    {"YF-NX vers.1", 0x2, 0x5, 0x1A, 0x10, 1},
    {"YF-NX vers.3", 0x2, 0x2, 0x1A, 0x20, 2},
    {"KV-NX-A", 0x2, 0x2, 0x41, 0x20, 2},
    {"Bolto-NX", 0x2, 0x3, 0x11, 0x10, 1},
    {"Plinta-NX", 0x2, 0x4, 0x1A, 0x10, 1},
    {"GHJ-NX", 0x2, 0x1, 0x21, 0x40, 2},
    {"GHT-NX", 0x2, 0x1, 0x13, 0x40, 2},
    {"PNB-NX", 0x3, 0x1, 0x30, 0x10, 1},
    {"XLC-NX", 0x3, 0x3, 0x34, 0x10, 1},
    {"XLC-NX vers.1", 0x3, 0x4, 0x34, 0x10, 1},
    {"PNB-NX vers.1", 0x3, 0x4, 0x30, 0x10, 1},
    {"Termia-NX(single-channel)", 0x4, 0x1, 0x15, 0x11, 1},
    {"Termia-NX(two-channel)", 0x4, 0x1, 0x15, 0x23, 2},
    {"Tallio-NX(single-channel)", 0x4, 0x1, 0x20, 0x11, 1},
    {"Tallio-NX(two-channel)", 0x4, 0x1, 0x20, 0x23, 2},
};

QByteArray contents(const char* name)
{
    QFile file(QString::fromLatin1(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// The catalogue of models: the built-in tables, the file that replaces them, and lines in error.
class tst_Device : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void missingFileIsWrittenAndRead();
    void builtInRowsAreInOrder_data();
    void builtInRowsAreInOrder();
    void builtInTextIsPaddedAndSeparatedInOneWay();
    void russianFileHoldsTheSameNumbers();
    void anExistingFileIsReadAndNothingIsWritten();
    void theRussianFileIsNeverRead();
    void deletingTheFileBringsTheBuiltInTableBack();
    void writingReplacesBothFilesAndReadsOne();
    void writingReachesAFileOfADirectoryThatMustNotBeWritten();
    void rowsOutsideTheTableAreEmpty();
    void aRowHasSixItemsOfTheirTypes();
    void goodLines_data();
    void goodLines();
    void badLinesCostOnlyThemselves_data();
    void badLinesCostOnlyThemselves();
    void linesMayEndInCarriageReturnAndLineFeed();
    void theLastLineNeedsNoEnd();
    void aLineEndsAtItsFirstNul();
    void textIsUtf8();
    void rowsWithEqualNumbersAreAllKept();
    void anUnreadableFileIsReportedAndLeavesTheTableEmpty();
    void withAParentAloneAnUnreadableFileIsToldToTheDebugStream();
    void aParentAloneIsEnoughForACatalogue();
    void aDirectoryThatCannotBeWrittenLeavesTheTableEmpty();
    void binaryFilesAreSurvived();

private:
    void write(const QByteArray& text) const;
    static QStringList names(const Device& device);

    Device::Reporter reporter()
    {
        return [this](const QString& title, const QString& text) { reports.append(title + QLatin1Char('|') + text); };
    }

    std::unique_ptr<QTemporaryDir> directory;
    QString formerDirectory;
    QStringList reports;
};

void tst_Device::init()
{
    formerDirectory = QDir::currentPath();
    directory = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir::setCurrent(directory->path()));
    reports.clear();
}

void tst_Device::cleanup()
{
    QVERIFY(QDir::setCurrent(formerDirectory));
    directory.reset();
}

void tst_Device::write(const QByteArray& text) const
{
    QFile file(QString::fromLatin1(englishName));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(text), qint64(text.size()));
}

QStringList tst_Device::names(const Device& device)
{
    QStringList list;
    for (int i = 0; i < device.deviceCount(); ++i) {
        list.append(device.deviceRow(i).constFirst().toString());
    }
    return list;
}

void tst_Device::missingFileIsWrittenAndRead()
{
    const Device device(reporter());
    QCOMPARE(device.deviceCount(), 51);
    QVERIFY(QFile::exists(QString::fromLatin1(englishName)));
    QVERIFY(QFile::exists(QString::fromLatin1(russianName)));
    QVERIFY(reports.isEmpty());
}

void tst_Device::builtInRowsAreInOrder_data()
{
    QTest::addColumn<int>("index");
    int index = 0;
    for (const Model& model : builtIn) {
        QTest::newRow(model.name) << index++;
    }
}

void tst_Device::builtInRowsAreInOrder()
{
    QFETCH(int, index);
    const Model& model = builtIn[index];
    const Device device(reporter());
    const QVariantList row = device.deviceRow(index);
    QCOMPARE(row.at(0).toString(), QString::fromLatin1(model.name));
    QCOMPARE(row.at(1).toInt(), model.terminalClass);
    QCOMPARE(row.at(2).toInt(), model.version);
    QCOMPARE(row.at(3).toInt(), model.type);
    QCOMPARE(row.at(4).toInt(), model.characteristic);
    QCOMPARE(row.at(5).toStringList().size(), model.outputs);
    QCOMPARE(row.at(5).toStringList().count(QStringLiteral("Output")), model.outputs);
}

void tst_Device::builtInTextIsPaddedAndSeparatedInOneWay()
{
    const Device device(reporter());
    const QList<QByteArray> lines = contents(englishName).split('\n');
    QCOMPARE(lines.size(), 52); // the last one is empty
    QVERIFY(lines.last().isEmpty());
    QVERIFY(lines.contains("Haldeon-NX;                 0x2; 0x1; 0x41; 0x20; Output; Output"));
    QVERIFY(lines.contains("HUBN-NX-QTR vers.2;         0x0; 0xA; 0x23; 0x1F; Output"));
    QVERIFY(lines.contains("Termia-NX(single-channel);  0x4; 0x1; 0x15; 0x11; Output"));
}

void tst_Device::russianFileHoldsTheSameNumbers()
{
    const Device device(reporter());
    const QStringList english = QString::fromUtf8(contents(englishName)).split(QLatin1Char('\n'));
    const QStringList russian = QString::fromUtf8(contents(russianName)).split(QLatin1Char('\n'));
    QCOMPARE(russian.size(), english.size());
    for (int i = 0; i < 51; ++i) {
        QCOMPARE(russian.at(i).mid(28, 22), english.at(i).mid(28, 22)); // the numbers stand in columns
        QVERIFY(russian.at(i).left(28) != english.at(i).left(28));
        QCOMPARE(russian.at(i).count(QStringLiteral("Выход")), english.at(i).count(QStringLiteral("Output")));
    }
}

void tst_Device::anExistingFileIsReadAndNothingIsWritten()
{
    write("Siren; 0x2; 0x1; 0x41; 0x20; Left; Right\n");
    const Device device(reporter());
    QCOMPARE(names(device), QStringList{QStringLiteral("Siren")});
    QVERIFY(!QFile::exists(QString::fromLatin1(russianName)));
}

void tst_Device::theRussianFileIsNeverRead()
{
    {
        QFile file(QString::fromLatin1(russianName));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("Mine; 0x2; 0x1; 0x41; 0x20\n");
    }
    const Device device(reporter());
    QCOMPARE(device.deviceCount(), 51);
    QVERIFY(!contents(russianName).contains("Mine"));
}

void tst_Device::deletingTheFileBringsTheBuiltInTableBack()
{
    write("Siren; 0x2; 0x1; 0x41; 0x20\n");
    Device device(reporter());
    QVERIFY(QFile::remove(QString::fromLatin1(englishName)));
    device.readCatalogue();
    QCOMPARE(device.deviceCount(), 51);
}

void tst_Device::writingReplacesBothFilesAndReadsOne()
{
    write("Siren; 0x2; 0x1; 0x41; 0x20\n");
    Device device(reporter());
    device.writeCatalogue();
    QCOMPARE(device.deviceCount(), 51);
    QCOMPARE(names(device).constFirst(), QStringLiteral("HUBN-NX-QTR"));
    QVERIFY(QFile::exists(QString::fromLatin1(russianName)));
}

void tst_Device::writingReachesAFileOfADirectoryThatMustNotBeWritten()
{
    constexpr QFile::Permissions forAll(0x6666);
    constexpr QFile::Permissions forReaders(0x5555);
    write("Siren; 0x2; 0x1; 0x41; 0x20\n");
    QVERIFY(QFile::setPermissions(QString::fromLatin1(englishName), forAll));
    const QFile::Permissions former = QFile::permissions(directory->path());
    QVERIFY(QFile::setPermissions(directory->path(), forReaders));
    {
        const OrdinaryUser user;
        QVERIFY(user.isOrdinary);
        Device device(reporter());
        device.writeCatalogue();
        QCOMPARE(device.deviceCount(), 51);
    }
    QVERIFY(QFile::setPermissions(directory->path(), former));
}

void tst_Device::rowsOutsideTheTableAreEmpty()
{
    const Device device(reporter());
    QVERIFY(device.deviceRow(51).isEmpty());
    QVERIFY(device.deviceRow(1000).isEmpty());
    QVERIFY(device.deviceRow(-1).isEmpty());
}

void tst_Device::aRowHasSixItemsOfTheirTypes()
{
    const Device device(reporter());
    const QVariantList row = device.deviceRow(0);
    QCOMPARE(row.size(), 6);
    QCOMPARE(int(row.at(0).type()), int(QMetaType::QString));
    for (int i = 1; i < 5; ++i) {
        QCOMPARE(int(row.at(i).type()), int(QMetaType::UChar));
    }
    QCOMPARE(int(row.at(5).type()), int(QMetaType::QStringList));
}

void tst_Device::goodLines_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("row");

    QTest::newRow("plain") << QByteArray("Siren;0x2;0x1;0x41;0x20;Left;Right")
                           << QStringLiteral("Siren 2 1 41 20 Left,Right");
    QTest::newRow("blanks around fields")
        << QByteArray("  Siren A \t;  0x2 ;0x1 ; 0x41;0x20 ;  Left  ") << QStringLiteral("Siren A 2 1 41 20 Left");
    QTest::newRow("numbers without 0x") << QByteArray("S;2;a;1F;ff") << QStringLiteral("S 2 a 1f ff ");
    QTest::newRow("five fields are enough") << QByteArray("S;0x2;0x1;0x41;0x20") << QStringLiteral("S 2 1 41 20 ");
    QTest::newRow("only the low eight bits count")
        << QByteArray("S;0x1FF;0x102;0x141;0xFFFFFF20") << QStringLiteral("S ff 2 41 20 ");
    QTest::newRow("empty fields shift the others") << QByteArray("X;;0x1;0x2;0x3;0x4") << QStringLiteral("X 1 2 3 4 ");
    QTest::newRow("a blank name is a name") << QByteArray(" ;1;2;3;4") << QStringLiteral(" 1 2 3 4 ");
    QTest::newRow("a blank output is an output") << QByteArray("S;1;2;3;4; ;B") << QStringLiteral("S 1 2 3 4 ,B");
}

void tst_Device::goodLines()
{
    QFETCH(QByteArray, line);
    write(line + '\n');
    const Device device(reporter());
    QCOMPARE(device.deviceCount(), 1);
    const QVariantList row = device.deviceRow(0);
    QStringList parts{row.at(0).toString()};
    for (int i = 1; i < 5; ++i) {
        parts.append(QString::number(row.at(i).toInt(), 16));
    }
    parts.append(row.at(5).toStringList().join(QLatin1Char(',')));
    QTEST(parts.join(QLatin1Char(' ')), "row");
}

void tst_Device::badLinesCostOnlyThemselves_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("complaint");

    const auto notEnough = QStringLiteral("not enought");
    const auto convert = QStringLiteral("contains convert error");
    QTest::newRow("empty") << QByteArray() << notEnough;
    QTest::newRow("separators only") << QByteArray(";;;;;;;") << notEnough;
    QTest::newRow("four fields") << QByteArray("S;0x2;0x1;0x41") << notEnough;
    QTest::newRow("five fields, one empty") << QByteArray("S;0x2;0x1;0x41;") << notEnough;
    QTest::newRow("class is no number") << QByteArray("S;two;0x1;0x41;0x20") << convert;
    QTest::newRow("version is no number") << QByteArray("S;0x2;;x;0x41;0x20") << convert;
    QTest::newRow("type is no number") << QByteArray("S;0x2;0x1;0xZ;0x20") << convert;
    QTest::newRow("characteristic is no number") << QByteArray("S;0x2;0x1;0x41;Output") << convert;
    QTest::newRow("blank number") << QByteArray("S;0x2;0x1;0x41; ") << convert;
}

void tst_Device::badLinesCostOnlyThemselves()
{
    QFETCH(QByteArray, line);
    QFETCH(QString, complaint);
    write("A;1;2;3;4\n" + line + "\nB;1;2;3;4\n");
    const DebugLines debug;
    const Device device(reporter());
    QCOMPARE(names(device), (QStringList{QStringLiteral("A"), QStringLiteral("B")}));
    QCOMPARE(debug.lines(), QStringList{QStringLiteral("RELAY : Device : (WARNING) string of file of devices '%1' %2")
                                            .arg(QString::fromLatin1(line), complaint)});
    QVERIFY(reports.isEmpty());
}

void tst_Device::linesMayEndInCarriageReturnAndLineFeed()
{
    write("A;1;2;3;4\r\nB;1;2;3;4;Out\r\n");
    const Device device(reporter());
    QCOMPARE(device.deviceCount(), 2);
    QCOMPARE(device.deviceRow(1).at(5).toStringList(), QStringList{QStringLiteral("Out")});
}

void tst_Device::theLastLineNeedsNoEnd()
{
    const DebugLines debug;
    write("A;1;2;3;4\nB;1;2;3;4");
    const Device device(reporter());
    QCOMPARE(device.deviceCount(), 2);
    QVERIFY(debug.lines().isEmpty());
}

void tst_Device::aLineEndsAtItsFirstNul()
{
    write(QByteArray("A;1;2;3;4;Out") + '\0' + QByteArray("put;More\nB;1;2;3;4\n"));
    const Device device(reporter());
    QCOMPARE(device.deviceCount(), 2);
    QCOMPARE(device.deviceRow(0).at(5).toStringList(), QStringList{QStringLiteral("Out")});
}

void tst_Device::textIsUtf8()
{
    write(QStringLiteral("Сирена;1;2;3;4;Выход\n").toUtf8());
    const Device device(reporter());
    QCOMPARE(names(device), QStringList{QStringLiteral("Сирена")});
}

void tst_Device::rowsWithEqualNumbersAreAllKept()
{
    write("A;1;2;3;4\nB;1;2;3;4\nA;1;2;3;4\n");
    const Device device(reporter());
    QCOMPARE(names(device), (QStringList{QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("A")}));
}

void tst_Device::anUnreadableFileIsReportedAndLeavesTheTableEmpty()
{
    QVERIFY(QDir().mkdir(QString::fromLatin1(englishName))); // a directory can't be read, not even by root
    const Device device(reporter());
    QCOMPARE(device.deviceCount(), 0);
    QCOMPARE(reports, QStringList{QStringLiteral("Error Devices_EN.csv|Error opening file")});
}

void tst_Device::withAParentAloneAnUnreadableFileIsToldToTheDebugStream()
{
    QVERIFY(QDir().mkdir(QString::fromLatin1(englishName)));
    const DebugLines debug;
    QObject parent;
    const auto* device = new Device({}, &parent);
    QCOMPARE(device->deviceCount(), 0);
    QCOMPARE(debug.linesWith(QStringLiteral("(WARNING) Error Devices_EN.csv Error opening file")).size(), 1);
}

void tst_Device::aParentAloneIsEnoughForACatalogue()
{
    QObject parent;
    const auto* device = new Device({}, &parent);
    QCOMPARE(device->parent(), &parent);
    QCOMPARE(device->deviceCount(), 51);
}

void tst_Device::aDirectoryThatCannotBeWrittenLeavesTheTableEmpty()
{
    // A working directory that is gone can't be written, not even by root.
    QVERIFY(QDir().mkdir(QStringLiteral("gone")));
    QVERIFY(QDir::setCurrent(QStringLiteral("gone")));
    QVERIFY(QDir().rmdir(directory->filePath(QStringLiteral("gone"))));
    const DebugLines debug;
    Device device(reporter());
    QCOMPARE(device.deviceCount(), 0);
    QCOMPARE(debug.linesWith(QStringLiteral("can't be written")).size(), 1);
    device.writeCatalogue();
    QCOMPARE(device.deviceCount(), 0);
    QVERIFY(reports.isEmpty());
}

void tst_Device::binaryFilesAreSurvived()
{
    QByteArray bytes;
    for (int i = 0; i < 65536; ++i) {
        bytes.append(char(i * 7919 >> 3));
    }
    write(bytes);
    const DebugLines debug; // takes the warnings
    const Device device(reporter());
    QVERIFY(device.deviceCount() < 65536 / 10);
    QVERIFY(!debug.lines().isEmpty());
}

QTEST_GUILESS_MAIN(tst_Device)
#include "tst_Device.moc"
