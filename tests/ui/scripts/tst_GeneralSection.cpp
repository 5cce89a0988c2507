#include "support/StyleChanges.h"
#include "ui/scripts/ShownEditor.h"

#include <QAbstractItemView>
#include <QLineEdit>
#include <QProxyStyle>
#include <QStyleFactory>

/// Name, mode, delay and duration of a script, as the editor shows and edits them.
class tst_GeneralSection : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void nameIsStoredAndAnnounced_data();
    void nameIsStoredAndAnnounced();
    void modeDelayAndDurationAreStored_data();
    void modeDelayAndDurationAreStored();
    void missingRowsShowRedAndStay();
    void numberTakesTheColourOfTheList();
    void aListIsNotStyledWithTheColourOfItsComboBox();
    void listsAreDrawnByTheStyleThatKeepsTheirPictures();

private:
    std::unique_ptr<ShownEditor> shown;
};

void tst_GeneralSection::init()
{
    shown = std::make_unique<ShownEditor>();
}

void tst_GeneralSection::cleanup()
{
    shown.reset();
}

void tst_GeneralSection::nameIsStoredAndAnnounced_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << QStringLiteral("Siren");
    QTest::newRow("empty") << QString();
    QTest::newRow("200 characters") << QString(200, QLatin1Char('W'));
    QTest::newRow("markup") << QStringLiteral("<b>&amp;</b> \"x\" 'y' %1 %2");
    QTest::newRow("odd") << QStringLiteral("日本 ä Ж \u202E \U0001F525 ; = [Scripts]");
}

void tst_GeneralSection::nameIsStoredAndAnnounced()
{
    QFETCH(const QString, name);
    shown->edit(1);
    auto* field = shown->find<QLineEdit>(QStringLiteral("lineEditNameScript"));
    field->setText(QStringLiteral("before"));
    field->setText(name);
    QCOMPARE(shown->script(1)->name, name);
    QCOMPARE(shown->titles.last(), QStringLiteral("Parameters of script: №2. ") + name);
    QCOMPARE(shown->refreshes, 2);
    shown->edit(2);
    shown->edit(1);
    QCOMPARE(field->text(), name);
    QCOMPARE(shown->script(1)->name, name);
}

void tst_GeneralSection::modeDelayAndDurationAreStored_data()
{
    QTest::addColumn<QString>("combo");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("byte");
    QTest::addColumn<int>("value");
    const RelayInfo model;
    const ParamItems modes = model.modes();
    for (const ParamItemPtr& row : modes) {
        QTest::addRow("mode %d", row->code) << "comboModeWorkRelay" << row->name << 1 << int(row->code);
    }
    const ParamItems delays = model.delays();
    for (const ParamItemPtr& row : delays) {
        QTest::addRow("delay %d", row->code) << "comboDelay" << row->name << 2 << int(row->code);
    }
    const ParamItems durations = model.durations();
    for (const ParamItemPtr& row : durations) {
        QTest::addRow("duration %d", row->code) << "comboDuration" << row->name << 2 << int(row->code) * 8;
    }
}

void tst_GeneralSection::modeDelayAndDurationAreStored()
{
    QFETCH(const QString, combo);
    QFETCH(const QString, text);
    QFETCH(const int, byte);
    QFETCH(const int, value);
    shown->edit();
    QComboBox* list = shown->combo(qPrintable(combo));
    list->setCurrentIndex(list->findText(text) == 0 ? 1 : 0);
    shown->refreshes = 0;
    list->setToolTip(QStringLiteral("old"));
    shown->choose(qPrintable(combo), text);
    QCOMPARE(int(quint8(shown->record().at(byte))), value);
    QCOMPARE(shown->refreshes, 1);
    const QColor color = list->currentData(Qt::BackgroundRole).value<QColor>();
    QCOMPARE(list->styleSheet(), QStringLiteral("QComboBox{combobox-popup: 0; selection-color: black; "
                                                "selection-background-color: rgba(0,0,0,20);background-color: "
                                                "rgba(%1, %2, %3, %4);}")
                                     .arg(color.red())
                                     .arg(color.green())
                                     .arg(color.blue())
                                     .arg(color.alpha()));
    QVERIFY(list->toolTip().isEmpty());
}

void tst_GeneralSection::missingRowsShowRedAndStay()
{
    const QString red = QStringLiteral("QComboBox{combobox-popup: 0; selection-color: black; "
                                       "selection-background-color: rgba(0,0,0,20);background-color: red;}");
    auto strange = ParamItemPtr::create();
    strange->code = 6;
    strange->name = QStringLiteral("mode of a later unit");
    shown->script()->mode = strange;
    shown->script()->delay.reset();
    shown->script()->duration.reset();
    shown->edit(1);
    shown->edit(0);
    for (const char* name : {"comboModeWorkRelay", "comboDelay", "comboDuration"}) {
        QCOMPARE(shown->combo(name)->currentIndex(), -1);
        QCOMPARE(shown->combo(name)->styleSheet(), red);
    }
    shown->edit(1);
    QCOMPARE(shown->script()->mode, strange);
    QVERIFY(!shown->script()->delay);
    QVERIFY(!shown->script()->duration);
    QCOMPARE(int(shown->record().at(1)), 6);
}

void tst_GeneralSection::numberTakesTheColourOfTheList()
{
    shown->edit();
    shown->editor->setStateColor(QStringLiteral("rgba(0, 255, 17, 150)"));
    QVERIFY(shown->widget("labelNumScript")->styleSheet().contains(QLatin1String("rgba(0, 255, 17, 150)")));
}

void tst_GeneralSection::aListIsNotStyledWithTheColourOfItsComboBox()
{
    shown->edit(1);
    auto* const combo = shown->find<QComboBox>(QStringLiteral("comboModeWorkRelay"));
    combo->setCurrentIndex(0);
    const QString before = combo->styleSheet();
    StyleChanges ofComboBox(combo);
    StyleChanges ofList(combo->view());
    combo->setCurrentIndex(1);
    QVERIFY(combo->styleSheet() != before);
    QCOMPARE(ofComboBox.count, 1);
    QCOMPARE(ofList.count, 0);
}

void tst_GeneralSection::listsAreDrawnByTheStyleThatKeepsTheirPictures()
{
    /// The application's style, which draws all other combo boxes.
    class CountingStyle : public QProxyStyle
    {
    public:
        using QProxyStyle::QProxyStyle;

        void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                const QWidget* widget) const override
        {
            drawn += control == CC_ComboBox ? 1 : 0;
            QProxyStyle::drawComplexControl(control, option, painter, widget);
        }

        mutable int drawn = 0;
    };
    auto* const style = new CountingStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setStyle(style);
    QComboBox other;
    other.grab();
    const int drawnForOne = style->drawn;
    shown->edit(1);
    for (const char* name : {"comboModeWorkRelay", "comboDelay", "comboDuration"}) {
        shown->widget(name)->grab();
    }
    const int drawnForAll = style->drawn;
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QCOMPARE(drawnForOne, 1);
    QCOMPARE(drawnForAll, drawnForOne);
}

QTEST_MAIN(tst_GeneralSection)
#include "tst_GeneralSection.moc"
