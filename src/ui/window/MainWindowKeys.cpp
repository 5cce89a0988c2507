// The window without a mouse, and to a screen reader.

#include "texts/texts.h"
#include "ui/tree/Tree_Relay_Widget.h"
#include "ui/window/MainWindow.h"
#include "ui_MainWindow.h"
#include "widgets/FocusFrame.h"
#include "widgets/FocusInSight.h"
#include "widgets/Spoken.h"

#include <QAction>
#include <QApplication>
#include <QEvent>
#include <QPushButton>
#include <QShortcut>
#include <QTreeWidget>

#include <functional>
#include <utility>

namespace
{

/// Keeps the keys of the window from it while a form is in front of it, also before that form is the active window.
class NoKeysBehindForms : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        return (event->type() == QEvent::Shortcut && QApplication::activeModalWidget() != nullptr) ||
               QObject::eventFilter(watched, event);
    }
};

} // namespace

/// Tab goes as the eye does: the tree, the lists and what else the tabs hold, the script editor.
void MainWindow::setUpFocus()
{
    auto* const tree = treeRelay->findChild<QTreeWidget*>();
    setTabOrder(tree, ui->tabWidget); // with all that it holds
    tree->setFocus();
    new FocusFrame(this);
    connect(qApp, &QApplication::focusChanged, this, [](QWidget* old, QWidget* now) {
        // A window that gets the focus back stays as it is scrolled: a click may be on its way there.
        if (old != nullptr && now != nullptr && old->window() == now->window()) {
            focus::bringIntoSight(now);
        }
    });
}

/// The keys of the menus: the platform's own where it has one for the purpose; with Ctrl and Shift what goes to the
/// unit for good or is rare, so that no slip does it.
void MainWindow::setUpShortcuts()
{
    struct Keys
    {
        QAction* action;
        QList<QKeySequence> keys;
    };
    const Keys rows[] = {
        {ui->actionSelectCoordinator, {Qt::CTRL + Qt::SHIFT + Qt::Key_C}},
        {ui->actionFirmware, {Qt::CTRL + Qt::SHIFT + Qt::Key_F}},
        {ui->actionSyncTime, {Qt::CTRL + Qt::SHIFT + Qt::Key_T}},
        {ui->actionRead, QKeySequence::keyBindings(QKeySequence::Refresh)},
        {ui->actionWrite, {Qt::CTRL + Qt::SHIFT + Qt::Key_D}},
        {ui->actionLoad, QKeySequence::keyBindings(QKeySequence::Open)},
        {ui->actionSave, QKeySequence::keyBindings(QKeySequence::Save)},
        {ui->actionFactorySetting, {Qt::CTRL + Qt::SHIFT + Qt::Key_R}},
        {ui->actionReadLog, {Qt::CTRL + Qt::Key_L}},
        {ui->actionLoadLog, {Qt::CTRL + Qt::SHIFT + Qt::Key_O}},
        {ui->actionSaveLog, {Qt::CTRL + Qt::SHIFT + Qt::Key_S}},
    };
    auto* const guard = new NoKeysBehindForms(this);
    for (const Keys& row : rows) {
        row.action->setShortcuts(row.keys);
        row.action->setAutoRepeat(false);
        row.action->installEventFilter(guard);
    }
    setUpTabShortcuts();
}

/// The next and the previous tab from anywhere in the window, and each by its number.
void MainWindow::setUpTabShortcuts()
{
    QTabWidget* const tabs = ui->tabWidget;
    const auto add = [this, tabs](const QKeySequence& key, const std::function<int()>& wanted) {
        connect(new QShortcut(key, this), &QShortcut::activated, tabs,
                [tabs, wanted] { tabs->setCurrentIndex(wanted()); });
    };
    const int count = tabs->count();
    add(QKeySequence::NextChild, [tabs, count] { return (tabs->currentIndex() + 1) % count; });
    add(QKeySequence::PreviousChild, [tabs, count] { return (tabs->currentIndex() + count - 1) % count; });
    for (int index = 0; index < count; ++index) {
        add(int(Qt::ALT) + int(Qt::Key_1) + index, [index] { return index; });
    }
}

void MainWindow::setUpSpokenNames()
{
    spoken::call(ui->listWidgetActivateScript, spoken::name(ui->labelTitleActivateScript->text()));
    spoken::nameBy(ui->listWidgetAllScript, ui->labelTitleAllScript, texts::listAvailableScripts());
    spoken::nameBy(ui->textEditComment, ui->labelTitleComment, texts::commentTitle());
    ui->tableViewLogEvents->setAccessibleName(texts::tabLogEvents());
    ui->tableLogger->setAccessibleName(texts::spokenPackets());
    ui->tabWidget->setAccessibleName(texts::spokenTabs());
    ui->tabWidget->tabBar()->setAccessibleName(texts::spokenTabs());
    ui->tabWidget->tabBar()->setAccessibleTabName(ui->tabWidget->indexOf(ui->tabLogger), texts::spokenPackets());
    for (const auto& [button, text] : {std::pair(ui->pushButtonAddScript, texts::spokenAddScripts()),
                                       std::pair(ui->pushButtonDeleteScript, texts::spokenRemoveScripts())}) {
        button->setAccessibleName(text);
        button->setToolTip(text);
    }
}
