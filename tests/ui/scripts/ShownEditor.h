#pragma once

#include "model/RelayInfo.h"
#include "support/RandomModel.h"
#include "texts/texts.h"
#include "ui/pickers/SpecialSpinBox.h"
#include "ui/scripts/Setting_Script_Widget.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QStyleFactory>
#include <QTest>

/// A model with a small catalogue, and an editor over it whose controls are reached by object name. What the editor
/// reports is counted and kept.
class ShownEditor
{
public:
    ShownEditor()
    {
        RandomModel::addTerminalTypes(*model);
        editor = std::make_unique<Setting_Script_Widget>(model);
        QObject::connect(editor.get(), &Setting_Script_Widget::sig_RefreshStateScriptInList, editor.get(),
                         [this] { ++refreshes; });
        QObject::connect(editor.get(), &Setting_Script_Widget::sig_changeTitle, editor.get(),
                         [this](const QString& title) { titles.append(title); });
    }

    /// Puts the editor on the screen, for tests that use the mouse or the focus.
    void open()
    {
        editor->resize(420, 900);
        editor->show();
        editor->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(editor.get()));
    }

    ScriptInfoPtr script(int index = 0) const
    {
        return model->scripts().at(index);
    }

    void edit(int index = 0)
    {
        editor->sl_SetNewScript(script(index));
        refreshes = 0;
        titles.clear();
    }

    QByteArray record(int index = 0) const
    {
        return model->makeScriptRecords().at(index);
    }

    template <typename Control>
    Control* find(const QString& name) const
    {
        auto* control = editor->findChild<Control*>(name);
        if (control == nullptr) {
            qFatal("no control of this type is named %s", qPrintable(name));
        }
        return control;
    }

    QWidget* widget(const char* name) const
    {
        return find<QWidget>(QLatin1String(name));
    }
    QComboBox* combo(const char* name) const
    {
        return find<QComboBox>(QLatin1String(name));
    }
    QSpinBox* spin(const char* name) const
    {
        return find<QSpinBox>(QLatin1String(name));
    }
    QAbstractButton* button(const QString& name) const
    {
        return find<QAbstractButton>(name);
    }
    QAbstractButton* button(const char* name) const
    {
        return button(QString::fromLatin1(name));
    }
    /// A field or arrows of the picker in a frame, and its list of months.
    SpecialSpinBox* picker(const char* frame, const char* name) const
    {
        return widget(frame)->findChild<SpecialSpinBox*>(QLatin1String(name));
    }
    QComboBox* month(const char* frame) const
    {
        return widget(frame)->findChild<QComboBox*>();
    }
    /// All controls of a type, for loops.
    template <typename Control>
    const QList<Control*> all() const
    {
        return editor->findChildren<Control*>();
    }

    QListWidget* states() const
    {
        return find<QListWidget>(QStringLiteral("listStateDevice"));
    }

    /// What a user does to a combo: chooses the row of a text.
    void choose(const char* name, const QString& text) const
    {
        QComboBox* list = combo(name);
        if (list->findText(text) < 0) {
            qFatal("%s has no row %s", name, qPrintable(text));
        }
        list->setCurrentIndex(list->findText(text));
    }

    /// Sets a check box as a click does, if it isn't so already.
    void check(const char* name, bool on) const
    {
        if (button(name)->isChecked() != on) {
            button(name)->click();
        }
    }

    void chooseState(const QString& name) const
    {
        choose("comboStateChannel", name);
    }

    /// Gives the script a filter of its own of a class, switched on or off.
    void filterByClass(int terminalClass, bool on) const
    {
        choose("comboBoxSelectType", texts::placeholderOtherType());
        spin("spinBoxClass")->setValue(terminalClass);
        check("checkBoxType", on);
    }

    /// Types into a field in place of what it shows.
    static void type(QSpinBox* field, const char* keys)
    {
        if (!field->isEnabled()) {
            qFatal("a user can't type into %s now", qPrintable(field->objectName()));
        }
        field->selectAll();
        QTest::keyClicks(field, QLatin1String(keys));
    }

    QSharedPointer<RelayInfo> model = QSharedPointer<RelayInfo>::create();
    std::unique_ptr<Setting_Script_Widget> editor;
    int refreshes = 0;
    QStringList titles;
};
