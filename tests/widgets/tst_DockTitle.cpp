#include "widgets/Look.h"

#include <QDockWidget>
#include <QLabel>
#include <QMainWindow>
#include <QVBoxLayout>
#include <QtTest>

class tst_DockTitle : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void theTitleTakesTheColour();
    void anEmptyDockTakesTheColourAsWell();
    void whatStandsInTheDockIsNotStyledAnew();
    void whatStandsInTheDockCanBeStyledAfterwards();

private:
    static QString sheet(const QString& background);
    QColor titleColor() const;
    QColor labelColor() const;

    QMainWindow* window = nullptr;
    QDockWidget* dock = nullptr;
    QLabel* label = nullptr;
};

void tst_DockTitle::init()
{
    window = new QMainWindow;
    window->setCentralWidget(new QWidget);
    dock = new QDockWidget(window);
    dock->setFeatures(QDockWidget::DockWidgetMovable);
    look::setDockTitle(dock, QStringLiteral("rgb(220,220,220)"));
    auto* const content = new QWidget(dock);
    label = new QLabel(content);
    label->setFixedSize(40, 40);
    label->setStyleSheet(QStringLiteral("background-color: rgb(0, 0, 255)"));
    (new QVBoxLayout(content))->addWidget(label);
    dock->setWidget(content);
    window->addDockWidget(Qt::LeftDockWidgetArea, dock);
    window->resize(400, 300);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window));
}

void tst_DockTitle::cleanup()
{
    delete window;
}

QString tst_DockTitle::sheet(const QString& background)
{
    return QStringLiteral("QDockWidget::title { %1}").arg(look::titleStyle(background));
}

QColor tst_DockTitle::titleColor() const
{
    return window->grab().toImage().pixelColor(dock->mapTo(window, QPoint(2, dock->widget()->y() / 2)));
}

QColor tst_DockTitle::labelColor() const
{
    return window->grab().toImage().pixelColor(label->mapTo(window, label->rect().center()));
}

void tst_DockTitle::theTitleTakesTheColour()
{
    QCOMPARE(titleColor(), QColor(220, 220, 220));
    for (const QColor& color : {QColor(0, 200, 0), QColor(200, 0, 0), QColor(200, 0, 0), QColor(0, 200, 0)}) {
        look::setDockTitle(dock, look::rgba(color));
        QCOMPARE(dock->styleSheet(), sheet(look::rgba(color)));
        QCOMPARE(titleColor(), color);
        QCOMPARE(labelColor(), QColor(0, 0, 255));
    }
}

void tst_DockTitle::anEmptyDockTakesTheColourAsWell()
{
    QDockWidget empty;
    look::setDockTitle(&empty, QStringLiteral("rgb(1, 2, 3)"));
    look::setDockTitle(&empty, QStringLiteral("rgb(4, 5, 6)"));
    QCOMPARE(empty.styleSheet(), sheet(QStringLiteral("rgb(4, 5, 6)")));
}

void tst_DockTitle::whatStandsInTheDockIsNotStyledAnew()
{
    class Events : public QObject
    {
    public:
        bool eventFilter(QObject*, QEvent* event) override
        {
            const QList<QEvent::Type> ofStyling = {QEvent::StyleChange, QEvent::PaletteChange, QEvent::FontChange,
                                                   QEvent::Paint, QEvent::LayoutRequest};
            count += ofStyling.contains(event->type()) ? 1 : 0;
            return false;
        }
        int count = 0;
    };
    QCoreApplication::processEvents();
    Events events;
    label->installEventFilter(&events);
    Events titleEvents;
    dock->installEventFilter(&titleEvents);
    look::setDockTitle(dock, QStringLiteral("rgb(0, 200, 0)"));
    QTRY_VERIFY(titleEvents.count > 0);
    QCOMPARE(titleEvents.count, 1); // the paint event
    QCOMPARE(events.count, 0);
}

void tst_DockTitle::whatStandsInTheDockCanBeStyledAfterwards()
{
    look::setDockTitle(dock, QStringLiteral("rgb(0, 200, 0)"));
    label->setStyleSheet(QStringLiteral("background-color: rgb(255, 0, 0)"));
    QCOMPARE(labelColor(), QColor(255, 0, 0));
    dock->setStyleSheet(QStringLiteral("QLabel {border: 20px solid rgb(1, 2, 3)}"));
    QCOMPARE(labelColor(), QColor(1, 2, 3));
}

QTEST_MAIN(tst_DockTitle)
#include "tst_DockTitle.moc"
