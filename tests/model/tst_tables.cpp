#include "model/RelayInfo.h"
#include "model/tables.h"

#include <QColor>
#include <QTest>

Q_DECLARE_METATYPE(ParamItemPtr)

namespace
{

/// One row as the device and the user know it.
struct Row
{
    int code;
    const char* name;
    const char* icon; ///< file below the resource prefix; empty for none
    QRgb background;
};

constexpr QRgb red = qRgba(255, 0, 0, 150);
constexpr QRgb green = qRgba(0, 255, 17, 150);
constexpr QRgb yellow = qRgba(255, 255, 0, 150);
constexpr QRgb blue = qRgba(30, 144, 255, 150);
constexpr QRgb grey = qRgba(187, 187, 187, 150);
constexpr QRgb white = qRgba(255, 255, 255, 100);
constexpr QRgb plain = qRgba(240, 240, 240, 255);

const Row expectedButtonStates[] = {
    {0x01, "Button 1(Alarm)", "Оповещение-1.png", red},   {0x81, "Button 1(Alarm)", "Оповещение-1.png", red},
    {0x02, "Button 2(Arm)", "взят_снят-1.png", green},    {0x82, "Button 2(Arm)", "взят_снят-1.png", green},
    {0x04, "Button 3(Disarm)", "взят_снят-2.png", plain}, {0x84, "Button 3(Disarm)", "взят_снят-2.png", plain},
    {0x08, "Button 4(test)", "Empty.png", yellow},        {0x88, "Button 4(test)", "Empty.png", yellow},
};

const Row expectedAnalogStates[] = {
    {0, "Norm", "Температура-1.png", green},           {1, "High level alarm", "Температура-2.png", red},
    {2, "Low level alarm", "Температура-3.png", blue}, {3, "Detector reset", "Empty.png", yellow},
    {4, "Tamper", "Провод-связь-2.png", yellow},       {5, "Detector power fault", "Осн_питание-2.png", yellow},
    {6, "Ground short", "Empty.png", yellow},          {7, "Channel short", "Empty.png", yellow},
    {8, "Data corrupted", "Empty.png", yellow},        {9, "Data corrupted", "Empty.png", yellow},
    {10, "Data corrupted", "Empty.png", yellow},       {11, "Temperature outside", "Empty.png", yellow},
};

const Row expectedStateChannels[] = {
    {255, "Not active", "Empty.png", grey},
    {0, "Norm", "Empty.png", green},
    {1, "Alarm (fire)", "Пожар.png", red},
    {2, "Short of loop", "Empty.png", yellow},
    {3, "Tamper of loop", "Провод-связь-2.png", yellow},
    {255, "State of analog terminal", "Empty.png", plain},
    {255, "State of analog terminal", "Empty.png", plain},
    {255, "State of analog terminal", "Empty.png", plain},
    {255, "State of analog terminal", "Empty.png", plain},
    {255, "State of analog terminal", "Empty.png", plain},
    {255, "State of analog terminal", "Empty.png", plain},
    {255, "State of analog terminal", "Empty.png", plain},
    {255, "State of analog terminal", "Empty.png", plain},
    {255, "State of analog terminal", "Empty.png", plain},
    {255, "State of analog terminal", "Empty.png", plain},
    {255, "State of analog terminal", "Empty.png", plain},
    {255, "State of analog terminal", "Empty.png", plain},
    {255, "State of PNB-NX", "Empty.png", plain},
    {255, "State of PNB-NX", "Empty.png", plain},
    {255, "State of PNB-NX", "Empty.png", plain},
    {255, "State of PNB-NX", "Empty.png", plain},
    {255, "State of PNB-NX", "Empty.png", plain},
    {255, "State of PNB-NX", "Empty.png", plain},
    {255, "State of PNB-NX", "Empty.png", plain},
    {255, "State of PNB-NX", "Empty.png", plain},
};

const Row expectedTerminalStates[] = {
    {0x40, "Tamper", "Вскрытие-2.png", yellow},
    {0x20, "Main power fault / Input S1 (HUBN)", "Осн_батарея-2.png", yellow},
    {0x10, "Backup power fault / Input S1 (HUBN)", "Резерв_батарея-2.png", yellow},
    {0x08, "Disconnection", "Радиосвязь-2.png", yellow},
    {0x04, "Detectivity fault / special power fault", "Empty.png", yellow},
    {0x02, "Fatal error", "Empty.png", yellow},
};

const Row expectedOutputStates[] = {
    {0, "OFF", "", plain},
    {1, "ON", "", green},
};

const Row expectedModes[] = {
    {0, "Deactivation", "Empty.png", white},
    {1, "Activation", "Empty.png", green},
    {2, "Pulsation (period of 2 sec.)", "Empty.png", yellow},
    {3, "Pulsation (period of 1 sec.)", "Empty.png", yellow},
    {7, "Disable relay activation", "Empty.png", red},
};

const Row expectedDurations[] = {
    {0, "No limit", "Empty.png", plain},    {1, "1 second", "Empty.png", plain},
    {2, "2 seconds", "Empty.png", plain},   {3, "3 seconds", "Empty.png", plain},
    {4, "4 seconds", "Empty.png", plain},   {5, "5 seconds", "Empty.png", plain},
    {6, "6 seconds", "Empty.png", plain},   {7, "7 seconds", "Empty.png", plain},
    {8, "8 seconds", "Empty.png", plain},   {9, "9 seconds", "Empty.png", plain},
    {10, "10 seconds", "Empty.png", plain}, {11, "20 seconds", "Empty.png", plain},
    {12, "30 seconds", "Empty.png", plain}, {13, "40 seconds", "Empty.png", plain},
    {14, "50 seconds", "Empty.png", plain}, {15, "60 seconds", "Empty.png", plain},
    {16, "2 minutes", "Empty.png", plain},  {17, "3 minutes", "Empty.png", plain},
    {18, "4 minutes", "Empty.png", plain},  {19, "5 minutes", "Empty.png", plain},
    {20, "6 minutes", "Empty.png", plain},  {21, "7 minutes", "Empty.png", plain},
    {22, "8 minutes", "Empty.png", plain},  {23, "9 minutes", "Empty.png", plain},
    {24, "10 minutes", "Empty.png", plain}, {25, "20 minutes", "Empty.png", plain},
    {26, "30 minutes", "Empty.png", plain}, {27, "40 minutes", "Empty.png", plain},
    {28, "50 minutes", "Empty.png", plain}, {29, "60 minutes", "Empty.png", plain},
    {30, "70 minutes", "Empty.png", plain}, {31, "80 minutes", "Empty.png", plain},
};

const Row expectedDelays[] = {
    {0, "No delay", "Empty.png", plain},   {1, "5 seconds", "Empty.png", plain},  {2, "10 seconds", "Empty.png", plain},
    {3, "30 seconds", "Empty.png", plain}, {4, "60 seconds", "Empty.png", plain}, {5, "2 minutes", "Empty.png", plain},
    {6, "5 minutes", "Empty.png", plain},  {7, "10 minutes", "Empty.png", plain},
};

template <std::size_t N>
void addRows(const char* table, const ParamItems& actual, const Row (&expected)[N])
{
    for (int i = 0; i < int(N); ++i) {
        QTest::addRow("%s %d", table, i) << actual.size() << int(N) << actual.value(i) << expected[i].code
                                         << QString::fromUtf8(expected[i].name) << QString::fromUtf8(expected[i].icon)
                                         << QColor::fromRgba(expected[i].background);
    }
}

} // namespace

/// Pins every row of the lookup tables, as the device, the files and the user's eyes know them.
class tst_tables : public QObject
{
    Q_OBJECT

private slots:
    void rowsAreAsTheDeviceAndTheUserKnowThem_data();
    void rowsAreAsTheDeviceAndTheUserKnowThem();
    void linkedRowsAreTheVeryRowsOfTheOtherTables();
    void onlyChannelStatesAreLinked();
    void terminalTypesBeginWithTheBlankRow();
    void someModeCodesHaveNoRow();
    void masksChooseRowsInTableOrder();
    void tablesOfTwoModelsShareNoRow();

private:
    RelayInfo model;
};

void tst_tables::rowsAreAsTheDeviceAndTheUserKnowThem_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("expectedSize");
    QTest::addColumn<ParamItemPtr>("row");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("icon");
    QTest::addColumn<QColor>("background");

    addRows("buttonStates", model.buttonStates(), expectedButtonStates);
    addRows("analogStates", model.analogStates(), expectedAnalogStates);
    addRows("stateChannels", model.stateChannels(), expectedStateChannels);
    addRows("terminalStates", model.terminalStates(), expectedTerminalStates);
    addRows("outputStates", model.outputStates(), expectedOutputStates);
    addRows("modes", model.modes(), expectedModes);
    addRows("durations", model.durations(), expectedDurations);
    addRows("delays", model.delays(), expectedDelays);
}

void tst_tables::rowsAreAsTheDeviceAndTheUserKnowThem()
{
    QFETCH(int, size);
    QFETCH(ParamItemPtr, row);
    QFETCH(QString, icon);
    QTEST(size, "expectedSize");
    QVERIFY(row);
    QTEST(int(row->code), "code");
    QTEST(row->name, "name");
    QCOMPARE(row->icon, icon.isEmpty() ? QString() : QStringLiteral(":/icons/icons/") + icon);
    QTEST(row->background, "background");
    QCOMPARE(row->foreground, QColor(0, 0, 0));
}

void tst_tables::linkedRowsAreTheVeryRowsOfTheOtherTables()
{
    const ParamItems targets = model.analogStates() + model.buttonStates();
    for (int i = 0; i < targets.size(); ++i) {
        QCOMPARE(model.stateChannels().at(5 + i)->linked, targets.at(i));
        QCOMPARE(model.stateChannels().at(5 + i)->effectiveCode(), targets.at(i)->code);
    }
}

void tst_tables::onlyChannelStatesAreLinked()
{
    const ParamItems others = model.stateChannels().mid(0, 5) + model.buttonStates() + model.analogStates() +
                              model.terminalStates() + model.outputStates() + model.modes() + model.durations() +
                              model.delays();
    for (const ParamItemPtr& row : others) {
        QVERIFY2(!row->linked, qPrintable(row->name));
    }
}

void tst_tables::terminalTypesBeginWithTheBlankRow()
{
    QCOMPARE(model.terminalTypes().size(), 1);
    const TerminalTypePtr blank = model.terminalTypes().value(0);
    QCOMPARE(blank->label, QStringLiteral("<other type>"));
    QCOMPARE(blank->background, QColor(187, 187, 187, 150));
    QCOMPARE(blank->name, QStringLiteral("F0 00 00"));
    QCOMPARE(int(blank->terminalClass), 15);
}

void tst_tables::someModeCodesHaveNoRow()
{
    for (const int code : {4, 5, 6}) {
        QVERIFY(!findByCode(model.modes(), code));
    }
    QCOMPARE(findByCode(model.modes(), 7)->name, QStringLiteral("Disable relay activation"));
}

void tst_tables::masksChooseRowsInTableOrder()
{
    const ParamItems chosen = rowsOfMask(model.terminalStates(), 0x42);
    QCOMPARE(chosen, (ParamItems{model.terminalStates().value(0), model.terminalStates().value(5)}));
    QVERIFY(rowsOfMask(model.terminalStates(), 0x81).isEmpty());
    QCOMPARE(maskOf(model.terminalStates()), 0x7E);
    QCOMPARE(maskOf({}), 0);
}

void tst_tables::tablesOfTwoModelsShareNoRow()
{
    const RelayInfo other;
    QVERIFY(other.modes().value(0) != model.modes().value(0));
}

QTEST_GUILESS_MAIN(tst_tables)
#include "tst_tables.moc"
