#pragma once

#include "link/FormChoiceCoordinator.h"
#include "link/FormWaiting.h"
#include "simulator/UnitSimulator.h"
#include "support/Eventually.h"
#include "support/ScriptedDialogs.h"
#include "texts/texts.h"
#include "ui/window/MainWindow.h"

#include <QAction>
#include <QImage>
#include <QLabel>
#include <QPixmap>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <memory>

/// The main window over a simulated unit, its only port, with what tests ask of the two.
class WindowOverUnit
{
public:
    explicit WindowOverUnit(const UnitState& state = UnitState(), const QVector<UnitFault>& faults = {})
        : unit(state), seams(makeSeams())
    {
        unit.setFaults(faults);
        window = std::make_unique<MainWindow>(seams);
        QObject::connect(form(), &FormChoiceCoordinator::sig_sendResultOperation, window.get(),
                         [this](const QString& text) { told.append(text); });
        window->show();
    }

    Q_DISABLE_COPY_MOVE(WindowOverUnit)
    ~WindowOverUnit() = default;

    template <typename Widget>
    Widget* get(const char* name) const
    {
        return window->findChild<Widget*>(QLatin1String(name));
    }
    QLabel* label(const char* name) const
    {
        return get<QLabel>(name);
    }
    QString result() const
    {
        return label("labelResult")->text();
    }
    void trigger(const char* action) const
    {
        get<QAction>(action)->trigger();
    }
    FormChoiceCoordinator* form() const
    {
        return window->findChild<FormChoiceCoordinator*>();
    }
    /// The icon of the status bar says so.
    bool isConnected() const
    {
        const QImage green = QPixmap(QStringLiteral(":/icons/icons/green.png")).toImage();
        return label("labelIconPort")->pixmap(Qt::ReturnByValue).toImage() == green;
    }
    bool isBusy() const
    {
        return window->findChild<FormWaiting*>()->isVisible();
    }

    /// Waits until the coordinator form has told one of the texts, which are searched for, and the busy form is gone.
    bool waitFor(const QStringList& anyOf, int timeout = 60000) const
    {
        const auto isTold = [&](const QString& text) { return !told.filter(text).isEmpty(); };
        return eventually([&] { return std::any_of(anyOf.cbegin(), anyOf.cend(), isTold) && !isBusy(); }, timeout);
    }
    bool waitForChain(int timeout = 60000) const
    {
        return waitFor(
            {texts::resultLogOk(), texts::resultLogErrors(), texts::resultLogError(), texts::resultLogUnchanged()},
            timeout);
    }

    /// Runs an action of the menu to its end.
    bool read()
    {
        return run("actionRead", {texts::resultReadScriptsOk(), texts::resultReadScriptsErrors()});
    }
    bool write()
    {
        return run("actionWrite", {texts::resultWriteScriptsOk(), texts::resultWriteScriptsErrors()});
    }
    bool readLog()
    {
        return run("actionReadLog", {texts::resultLogOk(), texts::resultLogErrors(), texts::resultLogError(),
                                     texts::resultLogUnchanged()});
    }

    UnitSimulator unit;
    ScriptedDialogs dialogs;
    QStringList told; ///< result texts of the coordinator form, in order
    std::unique_ptr<MainWindow> window;

private:
    bool run(const char* action, const QStringList& ends)
    {
        told.clear();
        unit.clearRequests();
        trigger(action);
        return waitFor(ends);
    }

    WindowSeams makeSeams()
    {
        WindowSeams made;
        made.portNames = [name = unit.portName()] { return QStringList{name}; };
        made.dialogs = &dialogs;
        return made;
    }

    WindowSeams seams;
};
