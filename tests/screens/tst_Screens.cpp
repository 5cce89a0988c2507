#include "eventlog/LogTable.h"
#include "firmware/Loading.h"
#include "link/FormWaiting.h"
#include "support/Eventually.h"
#include "texts/texts.h"
#include "ui/log/EventView.h"
#include "ui/tree/FormAddingTerminal.h"
#include "ui/window/WindowTest.h"
#include "widgets/ElidedLabel.h"
#include "widgets/ScreenRoom.h"
#include "widgets/scaledApplication.h"

#include <QAbstractScrollArea>
#include <QCheckBox>
#include <QDockWidget>
#include <QFileDialog>
#include <QHeaderView>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QStandardItemModel>
#include <QTabWidget>

#include <functional>

Q_DECLARE_METATYPE(std::function<QWidget*()>)

/// Every form on the screen of the display that the test is started on: none lies outside it, and no text is cut. ctest
/// starts it on screens of several sizes and resolutions of fonts, which the environment names as well.
class tst_Screens : public WindowTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void theScreenIsTheOneThatIsMeant();
    void everyFormIsWithinTheScreen_data();
    void everyFormIsWithinTheScreen();
    void sizesHoldWhereThereIsRoom_data();
    void sizesHoldWhereThereIsRoom();
    void panelsStayUsable();
    void lampIsSharp();

private:
    QWidget* maximised(int tab);
    QWidget* unmaximised();
    QWidget* coordinators();
    QWidget* busy();
    QWidget* addingTerminal();
    QWidget* loading();
    QWidget* openedEvent();
    QWidget* fileDialog();

    std::unique_ptr<QWidget> further; ///< a form that the window doesn't own
};

namespace
{

QSize meantSize()
{
    const QStringList sides = qEnvironmentVariable("SCREEN_SIZE").split(QLatin1Char('x'));
    return {sides.value(0).toInt(), sides.value(1).toInt()};
}

double meantScale()
{
    return qEnvironmentVariableIntValue("SCREEN_DPI") / 96.0;
}

QString nameOf(const QWidget* widget)
{
    return QStringLiteral("%1 '%2' %3x%4")
        .arg(QString::fromLatin1(widget->metaObject()->className()), widget->objectName())
        .arg(widget->width())
        .arg(widget->height());
}

/// The least size in which a widget shows its text; an empty one if it has none, or has a way to show it elsewhere.
QSize sizeOfText(const QWidget* widget)
{
    if (const auto* label = qobject_cast<const QLabel*>(widget)) {
        if (label->text().isEmpty() || qobject_cast<const ElidedLabel*>(label) != nullptr) {
            return {};
        }
        return label->wordWrap() ? QSize(0, label->heightForWidth(label->width())) : label->sizeHint();
    }
    if (const auto* button = qobject_cast<const QPushButton*>(widget)) {
        return button->text().isEmpty() ? QSize() : button->fontMetrics().size(Qt::TextShowMnemonic, button->text());
    }
    if (qobject_cast<const QCheckBox*>(widget) != nullptr || qobject_cast<const QRadioButton*>(widget) != nullptr) {
        return widget->sizeHint();
    }
    return {};
}

/// Headings of columns that don't fit into their cells.
QStringList cutHeadings(const QHeaderView* header)
{
    QStringList faults;
    for (int section = 0; section < header->count(); ++section) {
        const QString text = header->model()->headerData(section, header->orientation()).toString();
        if (header->isSectionHidden(section) || header->orientation() != Qt::Horizontal) {
            continue;
        }
        const QRect cell(0, 0, header->sectionSize(section) - 4, header->height());
        if (!cell.contains(header->fontMetrics().boundingRect(cell, Qt::AlignCenter | Qt::TextWordWrap, text))) {
            faults.append(QStringLiteral("heading '%1'").arg(text));
        }
    }
    return faults;
}

/// What is scrolled lies outside its parent as a matter of course.
bool isScrolled(const QWidget* widget)
{
    const QWidget* const viewport = widget->parentWidget();
    const auto* const area = qobject_cast<const QAbstractScrollArea*>(viewport->parentWidget());
    return area != nullptr && area->viewport() == viewport;
}

/// All widgets of a form that can't show what they have to say.
QStringList cutTexts(const QWidget* form)
{
    QStringList faults;
    const QList<QWidget*> widgets = form->findChildren<QWidget*>();
    for (const QWidget* widget : widgets) {
        if (!widget->isVisible() || widget->window() != form) {
            continue;
        }
        if (const auto* header = qobject_cast<const QHeaderView*>(widget)) {
            faults += cutHeadings(header);
        }
        const QSize text = sizeOfText(widget);
        if (text.width() > widget->width() || text.height() > widget->height()) {
            faults.append(QStringLiteral("%1 needs %2x%3").arg(nameOf(widget)).arg(text.width()).arg(text.height()));
        }
        const QWidget* const parent = widget->parentWidget();
        if (!text.isEmpty() && !isScrolled(widget) && !parent->rect().contains(widget->geometry())) {
            faults.append(QStringLiteral("%1 is cut by %2").arg(nameOf(widget), nameOf(parent)));
        }
    }
    return faults;
}

/// A frame may begin in the middle of what is a pixel for the forms.
bool isWithinScreen(const QWidget* form)
{
    return form->screen()->availableGeometry().adjusted(-1, -1, 1, 1).contains(form->frameGeometry());
}

} // namespace

void tst_Screens::init()
{
    begin();
    form()->hide();
    emit form()->sig_sendStatusSelectPortOnForm(1, QStringLiteral("ttyVirtualPort17"), QStringLiteral("57600"), 3,
                                                QStringLiteral("4711"), QStringLiteral("2.05"));
    emit form()->sig_sendDeviceTimeOnForm(QStringLiteral("12:00:00 01.02.2026, WED"), true);
    emit form()->sig_sendResultOperation(
        QStringLiteral("/a/file/with/a/very/long/path/without/any/place/to/break/it.cfg").repeated(4));
}

void tst_Screens::cleanup()
{
    further.reset();
    window.reset();
}

// The forms.

QWidget* tst_Screens::maximised(int tab)
{
    window->showMaximized();
    get<QTabWidget>("tabWidget")->setCurrentIndex(tab);
    return window.get();
}

QWidget* tst_Screens::unmaximised()
{
    window->showMaximized();
    if (eventually([&] { return window->width() > 0.9 * window->screen()->availableGeometry().width(); })) {
        window->showNormal();
    }
    return window.get();
}

QWidget* tst_Screens::coordinators()
{
    form()->show();
    return form();
}

QWidget* tst_Screens::busy()
{
    auto* const waiting = window->findChild<FormWaiting*>();
    waiting->setOperation(texts::busyWriting(), 0, 100);
    waiting->show();
    return waiting;
}

QWidget* tst_Screens::addingTerminal()
{
    auto* const adding = window->findChild<FormAddingTerminal*>();
    adding->show();
    return adding;
}

QWidget* tst_Screens::loading()
{
    further = std::make_unique<Loading>();
    auto* const dialog = static_cast<Loading*>(further.get());
    dialog->setAttribute(Qt::WA_DeleteOnClose, false);
    dialog->setParameters(1, 57600, QStringLiteral("/a/very/long/path/").repeated(12), QByteArray(300, 'i'));
    dialog->show();
    dialog->on_ButtonAbort_clicked(); // which shows both buttons
    return dialog;
}

QWidget* tst_Screens::openedEvent()
{
    QStandardItemModel log(1, logtable::columns().size());
    for (int column = 0; column < log.columnCount(); ++column) {
        log.setHeaderData(column, Qt::Horizontal, logtable::columns().at(column).heading());
        log.setItem(0, column, new QStandardItem(QString::number(column)));
    }
    further = std::make_unique<EventView>(log, 0, window.get());
    further->setAttribute(Qt::WA_DeleteOnClose, false);
    further->show();
    return further.get();
}

QWidget* tst_Screens::fileDialog()
{
    auto dialog = std::make_unique<QFileDialog>(window.get());
    screenRoom::keep(dialog.get());
    dialog->show();
    further = std::move(dialog);
    return further.get();
}

// The tests.

void tst_Screens::theScreenIsTheOneThatIsMeant()
{
    const QScreen* const screen = QGuiApplication::primaryScreen();
    QCOMPARE(screen->devicePixelRatio(), meantScale());
    const QSizeF pixels = QSizeF(screen->geometry().size()) * screen->devicePixelRatio();
    QVERIFY(qAbs(pixels.width() - meantSize().width()) < 2);
    QVERIFY(qAbs(pixels.height() - meantSize().height()) < 2);
    QVERIFY(QCoreApplication::testAttribute(Qt::AA_UseHighDpiPixmaps));
    // A point of a font is as many of the forms' pixels on any screen.
    QVERIFY(qAbs(screen->logicalDotsPerInch() - 96) < 5);
}

void tst_Screens::everyFormIsWithinTheScreen_data()
{
    QTest::addColumn<std::function<QWidget*()>>("show");
    const auto add = [](const char* name, const std::function<QWidget*()>& show) { QTest::newRow(name) << show; };
    add("outputs", [this] { return maximised(0); });
    add("log", [this] { return maximised(1); });
    add("packets", [this] { return maximised(2); });
    add("not maximised", [this] { return unmaximised(); });
    add("coordinators", [this] { return coordinators(); });
    add("busy", [this] { return busy(); });
    add("adding a terminal", [this] { return addingTerminal(); });
    add("loading", [this] { return loading(); });
    add("event", [this] { return openedEvent(); });
    add("file", [this] { return fileDialog(); });
}

void tst_Screens::everyFormIsWithinTheScreen()
{
    QFETCH(const std::function<QWidget*()>, show);
    const QWidget* const shown = show();
    QVERIFY(QTest::qWaitForWindowExposed(const_cast<QWidget*>(shown)));
    // On a busy machine Qt may miss the frame for good; then the form is where one without would be.
    eventually([shown] { return shown->frameGeometry() != shown->geometry(); }, 3000);
    if (!eventually([shown] { return isWithinScreen(shown); }, 5000)) {
        QCOMPARE(shown->frameGeometry(), shown->screen()->availableGeometry());
    }
    QStringList faults;
    eventually(
        [&] {
            faults = cutTexts(shown);
            return faults.isEmpty();
        },
        5000);
    QVERIFY2(faults.isEmpty(), qPrintable(faults.join(QLatin1String("; "))));
}

void tst_Screens::sizesHoldWhereThereIsRoom_data()
{
    QTest::addColumn<std::function<QWidget*()>>("show");
    QTest::addColumn<QSize>("size");
    const auto add = [](const char* name, const QSize& size, const std::function<QWidget*()>& show) {
        QTest::newRow(name) << show << size;
    };
    add("not maximised", {1023, 806}, [this] { return unmaximised(); });
    add("coordinators", {937, 572}, [this] { return coordinators(); });
    add("busy", {339, 150}, [this] { return busy(); });
    add("adding a terminal", {400, 307}, [this] { return addingTerminal(); });
    add("loading", {402, 244}, [this] { return loading(); });
}

/// On a screen too small for a size, as much of it as there is room for.
void tst_Screens::sizesHoldWhereThereIsRoom()
{
    QFETCH(const std::function<QWidget*()>, show);
    QFETCH(const QSize, size);
    constexpr QSize thickFrame(12, 42);
    constexpr QSize rounding(2, 3); // of a broken scale
    const QWidget* const shown = show();
    const QSize room = shown->screen()->availableGeometry().size();
    const QSize least = size.boundedTo(room - thickFrame) - rounding * (qFuzzyCompare(meantScale(), 1) ? 0 : 1);
    const auto isRight = [&] {
        return shown->size().boundedTo(least) == least && shown->size().boundedTo(size) == shown->size();
    };
    if (!eventually(isRight, 10000)) {
        QCOMPARE(shown->size(), least);
    }
}

void tst_Screens::panelsStayUsable()
{
    maximised(0);
    const auto hasWidth = [this](const char* name, int least) {
        const auto* const dock = get<QDockWidget>(name);
        return eventually([=] { return dock->width() >= least; }, 10000);
    };
    const int width = window->screen()->availableGeometry().width();
    const int editor = width < 680 ? 190 : 240;
    QVERIFY(hasWidth("dockTree", width < 720 ? 140 : 200));
    QVERIFY(hasWidth("dockScript", editor));
    // Nor does it become less when the window asks for more than there is.
    window->resizeDocks({get<QDockWidget>("dockScript")}, {10}, Qt::Horizontal);
    QCoreApplication::processEvents();
    QVERIFY(hasWidth("dockScript", editor));
}

/// Its picture has as many pixels as the screen shows of it.
void tst_Screens::lampIsSharp()
{
    const auto* const lamp = get<QLabel>("labelIconPort");
    QVERIFY(lamp->pixmap(Qt::ReturnByValue).width() >= 24 * meantScale());
}

int main(int argc, char* argv[])
{
    const auto application = scaledApplication(argc, argv);
    tst_Screens test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_Screens.moc"
