#include "LogFindTest.h"

#include <QCheckBox>
#include <QDateEdit>
#include <QHeaderView>
#include <QScrollBar>
#include <QStyleOptionComboBox>
#include <QWindow>

/// How the log tab stands before, in and after a search.
class tst_LogFindView : public LogFindTest
{
    Q_OBJECT

private slots:
    void init()
    {
        begin();
    }
    void cleanup()
    {
        end();
    }

    void pageIsPixelForPixelThatOfThePlainWidgets();
    void widthThatTheUserGivesInASearchIsKept_data();
    void widthThatTheUserGivesInASearchIsKept();
    void widthThatTheUserGivesAfterASearchIsKept();
    void endGoesBackToWhereTheViewStood();
    void endGoesBackToTheEventThatWasInView();
    void endLeavesTheEventChosenBeforeWhereItWas();
    void keysSayNothingInTheDebugLog();
    void keysSelectTheTextOfTheOpenBar();
    void barOpensWhileTheDatabaseSearches();
    void escapeInTheCalendarClosesItAlone();
    void daysUpsideDownAreTheSpanBetweenThem();
    void tabsLeadThroughTheBarToTheTable();

private:
    QLineEdit* field() const
    {
        return get<QLineEdit>("lineEditFind");
    }
    void find(const QString& text, const QString& expected)
    {
        field()->selectAll();
        QTest::keyClicks(field(), text);
        QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - ") + expected, waitTime);
        QTRY_VERIFY(window->view->updatesEnabled());
    }
    void escape(const QString& expected)
    {
        QTest::keyClick(field(), Qt::Key_Escape);
        QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - ") + expected, waitTime);
        QTRY_VERIFY(window->view->updatesEnabled());
    }
    int position() const
    {
        return window->view->verticalScrollBar()->value();
    }
};

/// The two widgets as they are without anything to find, copy or open by.
class PlainPage : public QWidget
{
public:
    PlainPage(const QSize& size, QAbstractItemModel* model, const QString& count)
        : view(new QTableView(this)), countRows(new QLabel(this))
    {
        auto* const layout = new QVBoxLayout(this);
        layout->addWidget(view);
        layout->addWidget(countRows);
        resize(size);
        countRows->setText(count);
        view->setModel(model);
        for (int column = 0; column <= 10; ++column) {
            view->setColumnHidden(column, true);
        }
        view->setStyleSheet(QStringLiteral("selection-background-color: rgb(230,230,230); selection-color: black; "
                                           "border: 1px solid rgb(187,187,187)"));
        view->setSelectionBehavior(QAbstractItemView::SelectRows);
        view->setSelectionMode(QAbstractItemView::SingleSelection);
        view->setEditTriggers(QAbstractItemView::NoEditTriggers);
        setUpHeaders();
        view->resizeColumnsToContents();
        const int widths[] = {90, 90, 72, 72, 130, 143};
        for (int i = 0; i < 6; ++i) {
            view->setColumnWidth(11 + i, widths[i]);
        }
    }

    QTableView* view;
    QLabel* countRows;

private:
    void setUpHeaders()
    {
        QHeaderView* const columns = view->horizontalHeader();
        columns->setStyleSheet(QStringLiteral("QHeaderView::section { background-color : rgb(244,244,244); }"));
        columns->setStretchLastSection(true);
        columns->setFixedHeight(40);
        columns->setDefaultAlignment(static_cast<Qt::Alignment>(4228));
        columns->setHighlightSections(false);
        QHeaderView* const rows = view->verticalHeader();
        rows->setHighlightSections(false);
        rows->setDefaultSectionSize(40);
        rows->setFixedWidth(40);
        rows->setDefaultAlignment(static_cast<Qt::Alignment>(132));
    }
};

/// The window's picture once all of it has been laid out; with a row selected, if there is one.
QImage pictureOf(QWidget& page, QTableView* view)
{
    page.activateWindow();
    [&] { QVERIFY(QTest::qWaitForWindowActive(&page)); }();
    view->setFocus();
    view->selectRow(1);
    QCoreApplication::sendPostedEvents();
    return page.grab().toImage();
}

void tst_LogFindView::pageIsPixelForPixelThatOfThePlainWidgets()
{
    start();
    {
        PlainPage plain(window->size(), window->view->model(), {});
        plain.show();
        QVERIFY(pictureOf(*window, window->view) == pictureOf(plain, plain.view));
    }
    window->tab->readLog();
    window->tab->sl_ReceiveDataEvents(mixedRecords(40), true);
    QTRY_VERIFY_WITH_TIMEOUT(attached(), waitTime);
    PlainPage plain(window->size(), window->view->model(), QStringLiteral("Count of rows in log - 40"));
    plain.show();
    const QImage expected = pictureOf(plain, plain.view);
    QVERIFY(pictureOf(*window, window->view) == expected);
    openBar();
    QTRY_VERIFY(pictureOf(*window, window->view) != expected);
}

void tst_LogFindView::widthThatTheUserGivesInASearchIsKept_data()
{
    QTest::addColumn<int>("change");
    QTest::newRow("wider") << 150;
    QTest::newRow("narrower") << -20;
}

/// Details that don't fit have a width of their own, which the user can change at any time.
void tst_LogFindView::widthThatTheUserGivesInASearchIsKept()
{
    QFETCH(int, change);
    window->resize(500, 400);
    showLog(mixedRecords(40));
    window->view->setColumnWidth(17, 300);
    openBar();
    find(QStringLiteral("0"), QStringLiteral("40 of 40"));
    QCOMPARE(window->view->columnWidth(17), 300);
    window->view->setColumnWidth(17, 300 + change);
    find(QStringLiteral("nothing"), QStringLiteral("0 of 40"));
    QCOMPARE(window->view->columnWidth(17), 300 + change);
    escape(QStringLiteral("40"));
    QCOMPARE(window->view->columnWidth(17), 300 + change);
    readLog(20);
    QCOMPARE(window->view->columnWidth(17), 300 + change);
}

void tst_LogFindView::widthThatTheUserGivesAfterASearchIsKept()
{
    window->resize(500, 400);
    showLog(mixedRecords(40));
    window->view->setColumnWidth(17, 300);
    openBar();
    find(QStringLiteral("nothing"), QStringLiteral("0 of 40"));
    escape(QStringLiteral("40"));
    window->view->setColumnWidth(17, 450);
    readLog(20);
    QCOMPARE(window->view->columnWidth(17), 450);
}

void tst_LogFindView::endGoesBackToWhereTheViewStood()
{
    showLog(mixedRecords(400));
    window->view->verticalScrollBar()->setValue(120);
    openBar();
    find(QStringLiteral("07.09"), QStringLiteral("15 of 400"));
    find(QStringLiteral("nothing"), QStringLiteral("0 of 400"));
    escape(QStringLiteral("400"));
    QCOMPARE(position(), 120);
    // And so does the last key that is taken back.
    openBar();
    find(QStringLiteral("0"), QStringLiteral("400 of 400"));
    QTest::keyClick(field(), Qt::Key_Backspace);
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 400"), waitTime);
    QCOMPARE(position(), 120);
}

void tst_LogFindView::endGoesBackToTheEventThatWasInView()
{
    showLog(mixedRecords(400));
    window->view->verticalScrollBar()->setValue(120);
    QTest::mouseClick(window->view->viewport(), Qt::LeftButton, Qt::NoModifier, middleOfRow(123));
    openBar();
    find(QStringLiteral("nothing"), QStringLiteral("0 of 400"));
    escape(QStringLiteral("400"));
    QCOMPARE(position(), 120);
    QCOMPARE(window->view->selectionModel()->selectedRows().value(0).row(), 123);
}

/// Who has scrolled away from a selected event isn't thrown back to it.
void tst_LogFindView::endLeavesTheEventChosenBeforeWhereItWas()
{
    showLog(mixedRecords(400));
    QTest::mouseClick(window->view->viewport(), Qt::LeftButton, Qt::NoModifier, middleOfRow(3));
    window->view->verticalScrollBar()->setValue(200);
    openBar();
    find(QStringLiteral("nothing"), QStringLiteral("0 of 400"));
    escape(QStringLiteral("400"));
    QCOMPARE(position(), 200);
    QCOMPARE(window->view->selectionModel()->selectedRows().value(0).row(), 3);
}

void tst_LogFindView::keysSayNothingInTheDebugLog()
{
    showLog(block(1, 20));
    const DebugLines lines;
    openBar();
    find(QStringLiteral("nothing"), QStringLiteral("0 of 20"));
    escape(QStringLiteral("20"));
    QCOMPARE(textsWithoutTime(lines.lines()), QStringList());
}

void tst_LogFindView::keysSelectTheTextOfTheOpenBar()
{
    showLog(block(1, 20));
    openBar();
    QTest::keyClicks(field(), QStringLiteral("nothing"));
    QTest::keyClick(field(), Qt::Key_F, Qt::ControlModifier);
    QCOMPARE(field()->selectedText(), QStringLiteral("nothing"));
    get<QLineEdit>("lineEditFindAddresses")->setFocus();
    QTest::keyClick(get<QLineEdit>("lineEditFindAddresses"), Qt::Key_F, Qt::ControlModifier);
    QVERIFY(field()->hasFocus());
    QCOMPARE(field()->selectedText(), QStringLiteral("nothing"));
}

void tst_LogFindView::barOpensWhileTheDatabaseSearches()
{
    showLog(mixedRecords(24));
    openBar();
    QTest::keyClicks(field(), QStringLiteral("xyz"));
    QTest::keyClick(field(), Qt::Key_Escape);
    QVERIFY(!barIsOpen());
    QVERIFY(window->view->model() == nullptr); // the first key went out at once
    openBar();
    QCOMPARE(get<QDateEdit>("dateEditFirstDay")->date(), QDate(2020, 9, 1));
    QTRY_VERIFY_WITH_TIMEOUT(window->view->model() != nullptr && window->view->model()->rowCount() == 24 &&
                                 count() == QLatin1String("Count of rows in log - 24"),
                             waitTime);
    QVERIFY(barIsOpen());
}

void tst_LogFindView::escapeInTheCalendarClosesItAlone()
{
    showLog(mixedRecords(24));
    openBar();
    QTest::mouseClick(get<QCheckBox>("checkBoxFirstDay"), Qt::LeftButton);
    auto* const day = get<QDateEdit>("dateEditFirstDay");
    QStyleOptionComboBox option;
    option.initFrom(day);
    const QRect arrow = day->style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxArrow, day);
    QTest::mouseClick(day, Qt::LeftButton, Qt::NoModifier, arrow.center());
    QTRY_VERIFY(QApplication::activePopupWidget() != nullptr);
    QTest::keyClick(QApplication::activePopupWidget()->windowHandle(), Qt::Key_Escape);
    QVERIFY(barIsOpen());
    QTRY_VERIFY(QApplication::activePopupWidget() == nullptr);
    QVERIFY(get<QCheckBox>("checkBoxFirstDay")->isChecked());
    QApplication::setActiveWindow(window.get());
    QTest::keyClick(day, Qt::Key_Escape);
    QVERIFY(!barIsOpen());
}

void tst_LogFindView::daysUpsideDownAreTheSpanBetweenThem()
{
    showLog(mixedRecords(24));
    openBar();
    for (const char* const box : {"checkBoxFirstDay", "checkBoxLastDay"}) {
        QTest::mouseClick(get<QCheckBox>(box), Qt::LeftButton);
    }
    const auto type = [this](const char* name, const QString& date) {
        auto* const edit = get<QDateEdit>(name);
        edit->setFocus(Qt::TabFocusReason);
        QTest::keyClicks(edit, date);
    };
    type("dateEditFirstDay", QStringLiteral("20092020"));
    type("dateEditLastDay", QStringLiteral("18092020"));
    QTRY_COMPARE_WITH_TIMEOUT(count(), QStringLiteral("Count of rows in log - 3 of 24"), waitTime);
    QCOMPARE(cell(*window, 0, 11), QStringLiteral("20.09.2020"));
    QCOMPARE(cell(*window, 2, 11), QStringLiteral("18.09.2020"));
}

void tst_LogFindView::tabsLeadThroughTheBarToTheTable()
{
    showLog(mixedRecords(24));
    openBar();
    for (const char* const box : {"checkBoxFirstDay", "checkBoxLastDay"}) {
        QTest::mouseClick(get<QCheckBox>(box), Qt::LeftButton);
    }
    const char* const order[] = {"lineEditFindAddresses", "checkBoxFirstDay",     "dateEditFirstDay",
                                 "checkBoxLastDay",       "dateEditLastDay",      "toolButtonKindPowerUp",
                                 "toolButtonKindChannel", "toolButtonKindStatus", "toolButtonKindMode",
                                 "toolButtonKindOther",   "toolButtonCloseFind"};
    field()->setFocus();
    for (const char* const name : order) {
        // A date is left behind its last part.
        const QWidget* const left = QApplication::focusWidget();
        for (int part = 0; part < 3 && QApplication::focusWidget() == left; ++part) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        QCOMPARE(QApplication::focusWidget()->objectName(), QLatin1String(name));
    }
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), window->view);
}

QTEST_MAIN(tst_LogFindView)

#include "tst_LogFindView.moc"
