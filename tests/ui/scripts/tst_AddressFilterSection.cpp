#include "ui/scripts/PicturedButton.h"
#include "ui/scripts/ShownEditor.h"

/// The filter by addresses, as the editor shows and edits it.
class tst_AddressFilterSection : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void addressButtonsStandForTheirPosition_data();
    void addressButtonsStandForTheirPosition();
    void addressButtonsAreRoundAndInOrder();
    void addressFilterSwitchEnablesAndShades();
    void headUnitAlwaysHasARing();
    void ringsFollowTheConnectedTerminals();
    void ringsFollowTheTypeFilter_data();
    void ringsFollowTheTypeFilter();
    void allAddressesCanBeReported();

private:
    void connectTerminals(const QByteArrayList& records);
    QString styleOf(int address) const;

    std::unique_ptr<ShownEditor> shown;
};

void tst_AddressFilterSection::init()
{
    shown = std::make_unique<ShownEditor>();
    shown->edit();
}

void tst_AddressFilterSection::cleanup()
{
    shown.reset();
}

void tst_AddressFilterSection::addressButtonsStandForTheirPosition_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("index");
    QTest::newRow("HUBN") << "ButtonAddressHUBN"
                          << "HUBN" << 31;
    for (int address = 1; address <= 31; ++address) {
        QTest::addRow("%d", address) << QStringLiteral("ButtonAddress%1").arg(address) << QString::number(address)
                                     << address - 1;
    }
}

void tst_AddressFilterSection::addressButtonsStandForTheirPosition()
{
    QFETCH(const QString, name);
    QFETCH(const QString, text);
    QFETCH(const int, index);
    QAbstractButton* button = shown->button(name);
    QCOMPARE(button->text(), text);
    button->click();
    QVERIFY(!shown->script()->addressFilter.contains(true)); // the filter is off, and so are its buttons
    shown->button("checkBoxAddress")->click();
    button->click();
    QCOMPARE(shown->script()->addressFilter.count(true), 1);
    QVERIFY(shown->script()->addressFilter.at(index));
    QVERIFY(button->styleSheet().contains(QLatin1String("background-color: rgb(68, 255, 0); ")));

    shown->edit(1);
    QVERIFY(button->styleSheet().contains(QLatin1String("background-color: rgb(230, 230, 230); ")));
    shown->edit(0);
    QVERIFY(button->styleSheet().contains(QLatin1String("background-color: rgb(68, 255, 0); ")));
    shown->button("checkBoxAddress")->click();
    QVERIFY(button->styleSheet().contains(QLatin1String("background-color: rgb(68, 220, 0); ")));
    shown->button("checkBoxAddress")->click();
    button->click();
    QVERIFY(!shown->script()->addressFilter.contains(true));
}

void tst_AddressFilterSection::addressButtonsAreRoundAndInOrder()
{
    shown->open();
    QPoint previous(-1, -1);
    for (int address = 1; address <= 31; ++address) {
        const QRect place = shown->button(QStringLiteral("ButtonAddress%1").arg(address))->geometry();
        QCOMPARE(place.size(), QSize(22, 22));
        QVERIFY(place.y() > previous.y() || (place.y() == previous.y() && place.x() > previous.x()));
        previous = place.topLeft();
    }
    QVERIFY(shown->widget("F_Address")->rect().contains(shown->button("ButtonAddress31")->geometry()));
    QCOMPARE(shown->button("ButtonAddressHUBN")->height(), 22);
}

void tst_AddressFilterSection::addressFilterSwitchEnablesAndShades()
{
    QWidget* frame = shown->widget("F_Address");
    QVERIFY(!frame->isEnabled());
    QCOMPARE(frame->styleSheet(), QStringLiteral("background-color: rgba(187, 187, 187, 150)"));
    shown->button("checkBoxAddress")->click();
    QVERIFY(frame->isEnabled());
    QCOMPARE(frame->styleSheet(), QString());
    QVERIFY(shown->script()->activateFilter.at(1));
    QCOMPARE(int(shown->record().at(5)) & 0x0F, 0x04);
    shown->button("checkBoxAddress")->click();
    QVERIFY(!shown->script()->activateFilter.at(1));
}

void tst_AddressFilterSection::connectTerminals(const QByteArrayList& records)
{
    shown->model->readTerminalRecords(records);
    shown->editor->sl_UpDateConnectList();
}

QString tst_AddressFilterSection::styleOf(int address) const
{
    return shown
        ->button(address == 0 ? QStringLiteral("ButtonAddressHUBN") : QStringLiteral("ButtonAddress%1").arg(address))
        ->styleSheet();
}

void tst_AddressFilterSection::headUnitAlwaysHasARing()
{
    QVERIFY(styleOf(0).contains(QLatin1String("border-color: rgb(0, 120, 0);")));
    connectTerminals({QByteArray::fromHex("00061a1f000000")});
    QVERIFY(styleOf(0).contains(QLatin1String("border-color: rgb(0, 120, 0);")));
    shown->filterByClass(1, true);
    QVERIFY(styleOf(0).contains(QLatin1String("border-color: rgb(120, 0, 0);")));
    connectTerminals({});
    QVERIFY(styleOf(0).contains(QLatin1String("border-color: rgb(0, 120, 0);")));
}

void tst_AddressFilterSection::ringsFollowTheConnectedTerminals()
{
    QVERIFY(!styleOf(5).contains(QLatin1String("border-color")));
    connectTerminals({QByteArray::fromHex("0531301000000000"), QByteArray::fromHex("09e1010200000000")});
    QVERIFY(styleOf(5).contains(QLatin1String("border-color: rgb(0, 120, 0);")));
    QVERIFY(!styleOf(6).contains(QLatin1String("border-color")));
    const auto toolTip = [](const char* name, const char* numbers) {
        return QStringLiteral("<p align=\"center\" style=\"margin-bottom:7px; margin-top:0px\"><b>%1</b></p>"
                              "<p align=\"center\" style=\"margin-bottom:7px; margin-top:0px\">(%2)</p>")
            .arg(QLatin1String(name), QLatin1String(numbers));
    };
    QCOMPARE(shown->button("ButtonAddress5")->toolTip(), toolTip("PNB-NX", "31 30 10"));
    QCOMPARE(shown->button("ButtonAddress9")->toolTip(), toolTip("141 01 02", "e1 01 02"));
    connectTerminals({});
    QVERIFY(!styleOf(5).contains(QLatin1String("border-color")));
    QVERIFY(shown->button("ButtonAddress5")->toolTip().isEmpty());
}

void tst_AddressFilterSection::ringsFollowTheTypeFilter_data()
{
    QTest::addColumn<QList<int>>("filter"); // class, version, type, characteristic
    QTest::addColumn<bool>("fits");
    QTest::newRow("any") << QList<int>{15, 0, 0, 0} << true;
    QTest::newRow("all equal") << QList<int>{1, 4, 0x31, 0x10} << true;
    QTest::newRow("other class") << QList<int>{2, 0, 0, 0} << false;
    QTest::newRow("other version") << QList<int>{15, 5, 0, 0} << false;
    QTest::newRow("any version") << QList<int>{1, 0, 0x31, 0x10} << true;
    QTest::newRow("other high half") << QList<int>{15, 0, 0x20, 0} << false;
    QTest::newRow("same high half, low half any") << QList<int>{15, 0, 0x30, 0} << true;
    QTest::newRow("other low half") << QList<int>{15, 0, 0x02, 0} << false;
    QTest::newRow("same low half, high half any") << QList<int>{15, 0, 0x01, 0} << true;
    QTest::newRow("other characteristic") << QList<int>{15, 0, 0, 0x20} << false;
}

void tst_AddressFilterSection::ringsFollowTheTypeFilter()
{
    QFETCH(const QList<int>, filter);
    QFETCH(const bool, fits);
    connectTerminals({QByteArray::fromHex("0714311000000000")});
    shown->filterByClass(filter.at(0), true);
    shown->spin("spinBoxVersion")->setValue(filter.at(1));
    shown->spin("spinBoxType")->setValue(filter.at(2));
    shown->spin("spinBoxCharacteristic")->setValue(filter.at(3));
    QCOMPARE(styleOf(7).contains(QLatin1String("rgb(0, 120, 0)")), fits);
    QCOMPARE(styleOf(7).contains(QLatin1String("rgb(120, 0, 0)")), !fits);
    QCOMPARE(shown->find<PicturedButton>(QStringLiteral("ButtonAddress7"))->isCrossed(), !fits);
    shown->button("checkBoxType")->click();
    QVERIFY(styleOf(7).contains(QLatin1String("rgb(0, 120, 0)")));

    // And when the script is shown again, after one that filters nothing.
    shown->button("checkBoxType")->click();
    shown->edit(1);
    QVERIFY(styleOf(7).contains(QLatin1String("rgb(0, 120, 0)")));
    shown->edit(0);
    QCOMPARE(styleOf(7).contains(QLatin1String("rgb(0, 120, 0)")), fits);
}

void tst_AddressFilterSection::allAddressesCanBeReported()
{
    QByteArrayList records;
    for (int address = 0; address < 32; ++address) {
        records.append(QByteArray(1, char(address)) + QByteArray::fromHex("21412000000000"));
    }
    connectTerminals(records);
    for (int address = 0; address < 32; ++address) {
        QVERIFY(styleOf(address).contains(QLatin1String("border-color: rgb(0, 120, 0);")));
    }
    shown->filterByClass(1, true);
    for (int address = 0; address < 32; ++address) {
        QVERIFY(styleOf(address).contains(QLatin1String("border-color: rgb(120, 0, 0);")));
    }
}

QTEST_MAIN(tst_AddressFilterSection)
#include "tst_AddressFilterSection.moc"
