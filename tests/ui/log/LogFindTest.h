#pragma once

#include "LogTabTest.h"

#include <QApplication>
#include <QLineEdit>
#include <QMenu>
#include <QTimer>

/// A log tab as its user works with it: by keys, by the mouse and by the menu of a right click.
class LogFindTest : public LogTabTest
{
protected:
    /// Shows the window with a log in it and gives it the keys.
    void showLog(const QByteArrayList& records)
    {
        start();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
        window->tab->readLog();
        window->tab->sl_ReceiveDataEvents(records, true);
        QTRY_VERIFY_WITH_TIMEOUT(attached(), waitTime);
        settle();
    }

    /// Waits until the database has told all that it had to, and the label with its new text has its place.
    void settle()
    {
        bool over = false;
        QMetaObject::invokeMethod(window->tab->database(), [this, &over] {
            QMetaObject::invokeMethod(
                window->tab.get(), [&over] { over = true; }, Qt::QueuedConnection);
        });
        QTRY_VERIFY_WITH_TIMEOUT(over, waitTime);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    }

    /// Records of the terminals 1 to 8 in turn, with the codes 0 to 3, a day after the other.
    static QByteArrayList mixedRecords(int count)
    {
        QByteArrayList records;
        for (int i = 0; i < count; ++i) {
            QByteArray data = record(i + 1);
            data[2] = static_cast<char>((data.at(2) & 0xC0) | ((i % 28 + 1) / 10) << 4 | (i % 28 + 1) % 10);
            data[9] = static_cast<char>(i % 4);
            data[10] = static_cast<char>(i % 8 + 1);
            records.append(data);
        }
        return records;
    }

    template <typename Widget>
    Widget* get(const char* name) const
    {
        return window->findChild<Widget*>(QLatin1String(name));
    }
    bool barIsOpen() const
    {
        const auto* const bar = get<QWidget>("logFindBar");
        return bar != nullptr && bar->isVisible();
    }
    void openBar()
    {
        QTest::keyClick(window->view, Qt::Key_F, Qt::ControlModifier);
        QVERIFY(barIsOpen());
        QVERIFY(get<QLineEdit>("lineEditFind")->hasFocus());
    }
    /// What the label tells of the rows in view; nothing while they are away, as they are during a search.
    QString count() const
    {
        return window->view->model() != nullptr ? window->countRows->text() : QString();
    }

    /// Opens the menu of a right click on a row and chooses an entry of it, whose state it returns. An entry that can't
    /// be chosen isn't.
    bool chooseFromMenu(QWidget* widget, const QPoint& position, const char* actionName)
    {
        bool enabled = false;
        bool met = false;
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
            auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (menu == nullptr || met) {
                return;
            }
            met = true;
            const QList<QAction*> actions = menu->actions();
            for (QAction* const action : actions) {
                if (action->objectName() == QLatin1String(actionName) && action->isEnabled()) {
                    enabled = true;
                    QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier, menu->actionGeometry(action).center());
                    return;
                }
            }
            menu->close();
        });
        poll.start(1);
        QContextMenuEvent rightClick(QContextMenuEvent::Mouse, position, widget->mapToGlobal(position));
        QApplication::sendEvent(widget, &rightClick);
        return met && enabled;
    }
    QPoint middleOfRow(int row) const
    {
        return window->view->visualRect(window->view->model()->index(row, 15)).center();
    }
    QList<int> numbersInView() const
    {
        QList<int> numbers;
        const QAbstractItemModel* const model = window->view->model();
        for (int row = 0; model != nullptr && row < model->rowCount(); ++row) {
            numbers.append(model->index(row, 0).data().toInt());
        }
        return numbers;
    }
};
