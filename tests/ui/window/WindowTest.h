#pragma once

#include "link/FormChoiceCoordinator.h"
#include "support/ScriptedDialogs.h"
#include "ui/window/MainWindow.h"

#include <QAction>
#include <QLabel>
#include <QtTest>

#include <memory>

/// The main window alone, without any port, whose dialogs answer by themselves.
class WindowTest : public QObject
{
protected:
    std::unique_ptr<ScriptedDialogs> dialogs;
    std::unique_ptr<MainWindow> window;

    /// Shows a new window. manuals: where it looks for the manual.
    void begin(const QStringList& manuals = {})
    {
        dialogs = std::make_unique<ScriptedDialogs>();
        WindowSeams seams;
        seams.portNames = [] { return QStringList(); };
        seams.dialogs = dialogs.get();
        seams.manuals = manuals;
        window = std::make_unique<MainWindow>(seams);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    }

    template <typename Widget>
    Widget* get(const char* name) const
    {
        return window->findChild<Widget*>(QLatin1String(name));
    }
    QAction* action(const char* name) const
    {
        return get<QAction>(name);
    }
    QString result() const
    {
        return get<QLabel>("labelResult")->text();
    }
    FormChoiceCoordinator* form() const
    {
        return window->findChild<FormChoiceCoordinator*>();
    }
};
