#include "benchmarks/FullWindow.h"

#include "benchmarks/Units.h"
#include "link/FormChoiceCoordinator.h"
#include "model/RelayInfo.h"
#include "ui/tree/Tree_Relay_Widget.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QEvent>
#include <QListWidget>
#include <QTabWidget>
#include <QTableView>
#include <QTableWidget>
#include <QTreeWidget>

namespace
{

QString configuration()
{
    return QStringLiteral("full.cfg");
}

} // namespace

QString FullWindow::FullConfiguration::openFileName(QWidget*, const QString&, const QString&)
{
    return configuration();
}

QString FullWindow::FullConfiguration::saveFileName(QWidget*, const QString&, const QString&)
{
    return QStringLiteral("saved.txt");
}

FullWindow::FullWindow()
    : window({[] { return QStringList(); }, {}, &dialogs}), panel(window.findChild<Tree_Relay_Widget*>()),
      tree(window.findChild<QTreeWidget*>(QStringLiteral("treeWidget"))),
      scripts(window.findChild<QListWidget*>(QStringLiteral("listWidgetAllScript"))),
      tabs(window.findChild<QTabWidget*>(QStringLiteral("tabWidget"))),
      log(window.findChild<QTableView*>(QStringLiteral("tableViewLogEvents"))),
      packets(window.findChild<QTableWidget*>(QStringLiteral("tableLogger")))
{
    window.showMaximized();
    settle();
    // Closed without a port, it puts the actions of the unit out of use, and a change of the tab reads no log.
    window.findChild<FormChoiceCoordinator*>()->close();

    units::fullModel(outputsOfTerminal)->saveToFile(configuration());
    window.sl_ReceiveConnectTerminal(units::terminalRecords(terminalCount));
    window.sl_LoadAllDataFromFile();
    tree->expandAll();

    for (int i = 0; i < rowCount; ++i) {
        window.sl_RequestInLog(QDateTime::currentDateTime(), QByteArray::fromHex("c18601000301070035aa"), false);
        window.sl_AnswerInLog(QDateTime::currentDateTime(), QByteArray(70, '\x55'), false);
    }
    window.sl_ReceiveDataEvents(units::logRecords(rowCount), true);
    while (log->model() == nullptr || log->model()->rowCount() < rowCount) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    settle();
}

void FullWindow::settle()
{
    bool busy = true;
    while (busy) {
        QGuiApplication::sync();
        busy = false;
        while (QAbstractEventDispatcher::instance()->processEvents(QEventLoop::AllEvents)) {
            busy = true;
        }
        // Without a running event loop these wait for ever, and the widgets of former rows would stay.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}
