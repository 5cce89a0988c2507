#include "support/StyleChanges.h"
#include "widgets/ColoredComboStyle.h"
#include "widgets/Look.h"
#include "widgets/SheetAlone.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QImage>
#include <QStyleFactory>
#include <QtTest>

#include <memory>
#include <utility>

namespace
{

QString sheet(const QColor& color)
{
    return QStringLiteral("QComboBox{combobox-popup: 0; background-color: %1;}").arg(look::rgba(color));
}

} // namespace

class tst_SheetAlone : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void aWidgetLooksAsInASheetSetByQt_data();
    void aWidgetLooksAsInASheetSetByQt();
    void theWidgetAloneIsStyledAnew();
    void aSheetThatIsThereIsNotSetAgain();
    void theFirstSheetAndNoneAreSetAsEver();
    void whatWasNeverShownIsNotStyled();
    void whatIsBelowCanBeStyledAfterwards();

private:
    static QImage picture(QWidget* widget)
    {
        return widget->grab().toImage();
    }

    std::unique_ptr<QComboBox> makeCombo() const;

    std::unique_ptr<QComboBox> combo;
};

void tst_SheetAlone::initTestCase()
{
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
}

std::unique_ptr<QComboBox> tst_SheetAlone::makeCombo() const
{
    auto made = std::make_unique<QComboBox>();
    made->addItems({QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three")});
    made->setFixedSize(120, 24);
    return made;
}

void tst_SheetAlone::init()
{
    combo = makeCombo();
    sheetAlone::apply(combo.get(), sheet(Qt::yellow));
    combo->show();
    QVERIFY(QTest::qWaitForWindowExposed(combo.get()));
}

void tst_SheetAlone::aWidgetLooksAsInASheetSetByQt_data()
{
    QTest::addColumn<bool>("keepsPictures");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("enabled") << false << true;
    QTest::newRow("disabled") << false << false;
    QTest::newRow("whose pictures are kept") << true << true;
    QTest::newRow("whose pictures are kept, disabled") << true << false;
}

void tst_SheetAlone::aWidgetLooksAsInASheetSetByQt()
{
    QFETCH(const bool, keepsPictures);
    QFETCH(const bool, enabled);
    const auto look = [enabled](QComboBox* box) {
        box->setEnabled(enabled);
        const QImage closed = picture(box);
        box->showPopup();
        const QImage rows = picture(box->view()->viewport());
        box->hidePopup();
        return std::make_pair(closed, rows);
    };
    if (keepsPictures) {
        combo->setStyle(ColoredComboStyle::shared());
    }
    for (const QColor& color : {QColor(Qt::green), QColor(Qt::red), QColor(200, 0, 0, 90), QColor(Qt::yellow)}) {
        sheetAlone::apply(combo.get(), sheet(color));
        const std::unique_ptr<QComboBox> other = makeCombo();
        other->setStyleSheet(sheet(color));
        other->show();
        QVERIFY(QTest::qWaitForWindowExposed(other.get()));
        combo->activateWindow();
        QTRY_COMPARE(QApplication::activeWindow(), static_cast<QWidget*>(combo.get()));
        const auto alone = look(combo.get());
        other->activateWindow();
        QTRY_COMPARE(QApplication::activeWindow(), static_cast<QWidget*>(other.get()));
        const auto byQt = look(other.get());
        QCOMPARE(alone.first, byQt.first);
        QCOMPARE(alone.second, byQt.second);
        QCOMPARE(combo->styleSheet(), other->styleSheet());
        QCOMPARE(combo->sizeHint(), other->sizeHint());
    }
}

void tst_SheetAlone::theWidgetAloneIsStyledAnew()
{
    StyleChanges own(combo.get());
    StyleChanges below(combo->view());
    sheetAlone::apply(combo.get(), sheet(Qt::green));
    QCOMPARE(own.count, 1);
    QCOMPARE(below.count, 0);
}

void tst_SheetAlone::aSheetThatIsThereIsNotSetAgain()
{
    StyleChanges own(combo.get());
    sheetAlone::apply(combo.get(), sheet(Qt::yellow));
    QCOMPARE(own.count, 0);
}

void tst_SheetAlone::theFirstSheetAndNoneAreSetAsEver()
{
    const QImage yellow = picture(combo.get());
    sheetAlone::apply(combo.get(), QString());
    const QImage bare = picture(combo.get());
    QVERIFY(bare != yellow);
    sheetAlone::apply(combo.get(), sheet(Qt::yellow));
    QCOMPARE(picture(combo.get()), yellow);
    combo->setStyleSheet(QString());
    QCOMPARE(picture(combo.get()), bare);
}

void tst_SheetAlone::whatWasNeverShownIsNotStyled()
{
    const std::unique_ptr<QComboBox> hidden = makeCombo();
    sheetAlone::apply(hidden.get(), sheet(Qt::yellow));
    StyleChanges own(hidden.get());
    sheetAlone::apply(hidden.get(), sheet(Qt::green));
    QCOMPARE(own.count, 0);
    QCOMPARE(hidden->styleSheet(), sheet(Qt::green));
    QVERIFY(!hidden->testAttribute(Qt::WA_WState_Polished));
}

void tst_SheetAlone::whatIsBelowCanBeStyledAfterwards()
{
    sheetAlone::apply(combo.get(), sheet(Qt::green));
    StyleChanges below(combo->view());
    combo->view()->setStyleSheet(QStringLiteral("background-color: blue"));
    QVERIFY(below.count > 0);
    combo->showPopup();
    const QImage rows = picture(combo->view()->viewport());
    QCOMPARE(rows.pixelColor(rows.width() - 2, rows.height() - 2), QColor(Qt::blue)); // the first row is selected
}

QTEST_MAIN(tst_SheetAlone)
#include "tst_SheetAlone.moc"
