#include "ui/window/SteadyTabWidget.h"

#include <QLabel>
#include <QPaintEvent>
#include <QTabBar>
#include <QVBoxLayout>
#include <QtTest>

namespace
{

class Paints : public QObject
{
public:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            region += static_cast<QPaintEvent*>(event)->region();
        }
        return false;
    }

    QRegion region;
};

} // namespace

class tst_SteadyTabWidget : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aNewTextPaintsNoMoreThanItsLabel();
    void aTallerLabelMovesWhatIsBelow();
    void aLargerBarPaintsAll();

private:
    SteadyTabWidget* tabs = nullptr;
    QLabel* label = nullptr;
    QLabel* below = nullptr;
    Paints paints;
};

void tst_SteadyTabWidget::init()
{
    tabs = new SteadyTabWidget;
    auto* const page = new QWidget;
    auto* const layout = new QVBoxLayout(page);
    label = new QLabel(QStringLiteral("one"));
    below = new QLabel(QStringLiteral("below"));
    layout->addWidget(label);
    layout->addWidget(below, 1, Qt::AlignTop);
    tabs->addTab(page, QStringLiteral("Tab"));
    tabs->resize(400, 300);
    tabs->show();
    QVERIFY(QTest::qWaitForWindowExposed(tabs));
    for (int turn = 0; turn < 10; ++turn) { // the layouts follow one after the other
        QCoreApplication::processEvents();
    }
    tabs->installEventFilter(&paints);
    paints.region = QRegion();
}

void tst_SteadyTabWidget::cleanup()
{
    delete tabs;
}

void tst_SteadyTabWidget::aNewTextPaintsNoMoreThanItsLabel()
{
    label->setText(QStringLiteral("another"));
    for (int turn = 0; turn < 10; ++turn) {
        QCoreApplication::processEvents();
    }
    QVERIFY(!paints.region.isEmpty());
    QVERIFY(!paints.region.contains(tabs->rect().bottomRight() - QPoint(20, 20)));
    QVERIFY(tabs->updatesEnabled());
}

void tst_SteadyTabWidget::aTallerLabelMovesWhatIsBelow()
{
    const int before = below->y();
    label->setText(QStringLiteral("two\nlines"));
    QTRY_VERIFY(below->y() > before);
    const int least = tabs->minimumSizeHint().height();
    label->setMinimumHeight(1000);
    QTRY_VERIFY(tabs->minimumSizeHint().height() > least + 500);
}

void tst_SteadyTabWidget::aLargerBarPaintsAll()
{
    QFont font = tabs->tabBar()->font();
    font.setPointSize(font.pointSize() * 3);
    tabs->tabBar()->setFont(font);
    QTRY_VERIFY(paints.region.contains(QPoint(0, tabs->height() / 2))); // the frame
}

QTEST_MAIN(tst_SteadyTabWidget)
#include "tst_SteadyTabWidget.moc"
