#include "WindowUser.h"

#include "properties.h"
#include "ui/tree/FormAddingTerminal.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QSet>
#include <QSpinBox>
#include <QTest>
#include <QTextEdit>
#include <QTimer>
#include <QTreeWidget>

#include <functional>

namespace
{

QString fileName()
{
    return QStringLiteral("sequence.cfg");
}

UnitState unitWith(const QVector<UnitTerminal>& terminals)
{
    UnitState state;
    state.terminals = terminals;
    return state;
}

void trigger(const QWidget* widget, const QKeySequence& key)
{
    const auto actions = widget->actions();
    for (QAction* action : actions) {
        if (action->shortcut() == key) {
            action->trigger();
        }
    }
}

QByteArray contentOfFile()
{
    QFile file(fileName());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString titleOf(const UserModel& model)
{
    const UserModel::Terminal& terminal = model.shown.terminals.at(model.terminal);
    const UserModel::Output& output = model.currentOutput();
    const QString place = terminal.address == 0 ? QString() : QLatin1Char('#') + QString::number(terminal.address);
    return terminal.name + QLatin1Char(' ') + place + QLatin1Char('(') + output.name + QLatin1Char(' ') +
           QString::number(output.number + 1) + QLatin1Char(')');
}

QString activeRows(const QListWidget* list)
{
    QStringList rows;
    for (int row = 0; row < list->count(); ++row) {
        rows.append(qobject_cast<QLabel*>(list->itemWidget(list->item(row)))->text());
    }
    return rows.join(QLatin1Char('|'));
}

QString activeRowsOf(const UserModel& model)
{
    QStringList rows;
    for (const int number : model.currentOutput().scripts) {
        rows.append(QStringLiteral(" %1. ").arg(number + 1, 2) + model.shown.scripts.at(number).name);
    }
    return rows.join(QLatin1Char('|'));
}

QString namesOf(const UserModel& model)
{
    const UserModel::Terminal& terminal = model.shown.terminals.at(model.terminal);
    QStringList names{terminal.address == 0 ? terminal.name
                                            : terminal.name + QStringLiteral(" (%1)").arg(terminal.address)};
    for (const UserModel::Output& output : terminal.outputs) {
        names.append(QStringLiteral("%1. ").arg(output.number + 1) + output.name);
    }
    return names.join(QLatin1Char('|'));
}

/// Steps fail on a machine that is busy for longer than a unit is waited for, and a user begins again.
bool untilGood(const std::function<bool()>& exchange)
{
    constexpr int mostTries = 5;
    for (int tries = 0; tries < mostTries; ++tries) {
        if (exchange()) {
            return true;
        }
    }
    return false;
}

/// Nothing if two texts are equal.
QString difference(const QString& what, const QString& shown, const QString& expected)
{
    return shown == expected
               ? QString()
               : what + QLatin1String(": \"") + shown + QLatin1String("\", not \"") + expected + QLatin1String("\"; ");
}

} // namespace

/// Two executive ones, whose kind no catalogue knows and of which one has more outputs than are read, and another.
QVector<UnitTerminal> WindowUser::terminals()
{
    return {UnitTerminal::make(3, 2, 1, 0x77, 0x20, 8), UnitTerminal::make(9, 2, 1, 0x77, 0x30, 12),
            UnitTerminal::make(5, 1, 1, 0x77, 0x10)};
}

WindowUser::WindowUser()
    : over(unitWith(terminals())), isFirstReadingOver(over.waitForChain()), tree(over.get<QTreeWidget>("treeWidget")),
      allScripts(over.get<QListWidget>("listWidgetAllScript")),
      activeScripts(over.get<QListWidget>("listWidgetActivateScript"))
{
    over.window->setUpdatesEnabled(false); // nobody looks, and painting takes a fifth of the time
}

void WindowUser::begin(const UnitState& state)
{
    changeUnit(state);
    writeComment({});
    read();
}

// ---- The tree --------------------------------------------------------------------------------------------------

QTreeWidgetItem* WindowUser::item(int terminal, int output) const
{
    QTreeWidgetItem* const ofTerminal = tree->topLevelItem(terminal);
    return output < 0 ? ofTerminal : ofTerminal->child(output);
}

template <typename Widget>
Widget* WindowUser::part(QTreeWidgetItem* item, const char* name) const
{
    return tree->itemWidget(item, 0)->findChild<Widget*>(QLatin1String(name));
}

void WindowUser::selectTerminal(int terminal) const
{
    tree->setCurrentItem(item(terminal));
}

void WindowUser::selectOutput(int terminal, int output) const
{
    tree->setCurrentItem(item(terminal, output));
}

void WindowUser::rename(QTreeWidgetItem* item, const QString& name) const
{
    tree->setCurrentItem(item);
    trigger(tree, Qt::Key_F2);
    auto* const edit = part<QLineEdit>(item, "edit");
    edit->selectAll();
    QTest::keyClicks(edit, name);
    QTest::keyClick(edit, Qt::Key_Return);
}

void WindowUser::renameTerminal(int terminal, const QString& name) const
{
    rename(item(terminal), name);
}

void WindowUser::renameOutput(int terminal, int output, const QString& name) const
{
    rename(item(terminal, output), name);
}

void WindowUser::setStartState(int terminal, int output, bool on) const
{
    part<QComboBox>(item(terminal, output), "comboStartState")->setCurrentIndex(on ? 1 : 0);
}

void WindowUser::clickReturn(int terminal, int output) const
{
    part<QCheckBox>(item(terminal, output), "checkReturn")->click();
}

void WindowUser::addTerminal(int address, const QString& name, const QStringList& outputs) const
{
    tree->findChild<QPushButton*>(QStringLiteral("pushButtonAddGroup"))->click();
    auto* const form = over.window->findChild<FormAddingTerminal*>();
    const auto lineEdit = [form](const QString& edit) { return form->findChild<QLineEdit*>(edit); };
    form->findChild<QComboBox*>(QStringLiteral("comboBoxAddress"))->setCurrentText(QString::number(address));
    lineEdit(QStringLiteral("lineEditTerminal"))->setText(name);
    form->findChild<QSpinBox*>(QStringLiteral("spinBoxOutputs"))->setValue(outputs.size());
    for (int i = 0; i < outputs.size(); ++i) {
        lineEdit(QStringLiteral("lineEditOutput%1").arg(i + 1))->setText(outputs.at(i));
    }
    form->findChild<QPushButton*>(QStringLiteral("pushButton"))->click();
}

/// The menu returns when it has gone, so the choice is made from within it.
void WindowUser::chooseFromMenu(QTreeWidgetItem* item, int action) const
{
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, tree, [&watch, action] {
        auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (menu != nullptr) {
            watch.stop();
            menu->actions().at(action)->trigger();
            menu->close();
        }
    });
    watch.start(0);
    tree->scrollToItem(item);
    emit tree->customContextMenuRequested(tree->visualItemRect(item).center());
}

void WindowUser::hideTerminal(int terminal) const
{
    chooseFromMenu(item(terminal), 0);
}

void WindowUser::hideNotReported() const
{
    chooseFromMenu(item(0), 1);
}

// ---- The lists and the editor ----------------------------------------------------------------------------------

void WindowUser::selectRows(QListWidget* list, const QList<int>& rows)
{
    list->setCurrentRow(rows.first(), QItemSelectionModel::ClearAndSelect);
    for (const int row : rows) {
        list->item(row)->setSelected(true);
    }
}

void WindowUser::chooseScript(int number) const
{
    allScripts->setCurrentRow(number, QItemSelectionModel::ClearAndSelect);
}

void WindowUser::addScripts(const QList<int>& numbers) const
{
    selectRows(allScripts, numbers);
    over.get<QPushButton>("pushButtonAddScript")->click();
}

void WindowUser::removeScripts(const QList<int>& rows) const
{
    selectRows(activeScripts, rows);
    over.get<QPushButton>("pushButtonDeleteScript")->click();
}

void WindowUser::moveScripts(const QList<int>& rows, int step) const
{
    selectRows(activeScripts, rows);
    trigger(activeScripts, Qt::ALT + (step < 0 ? Qt::Key_Up : Qt::Key_Down));
}

void WindowUser::typeNameOfScript(const QString& name) const
{
    auto* const edit = over.get<QLineEdit>("lineEditNameScript");
    edit->selectAll();
    QTest::keyClicks(edit, name);
}

void WindowUser::chooseRow(const char* combo, int row) const
{
    over.get<QComboBox>(combo)->setCurrentIndex(row);
}

void WindowUser::click(const QString& button) const
{
    over.window->findChild<QAbstractButton*>(button)->click();
}

void WindowUser::clickFault(int row) const
{
    QListWidgetItem* const fault = over.get<QListWidget>("listStateDevice")->item(row);
    fault->setCheckState(fault->checkState() == Qt::Checked ? Qt::Unchecked : Qt::Checked);
}

void WindowUser::setTime(const char* frame, const char* field, int value) const
{
    over.get<QWidget>(frame)->findChild<QSpinBox*>(QLatin1String(field))->setValue(value);
}

void WindowUser::writeComment(const QString& comment) const
{
    over.get<QTextEdit>("textEditComment")->setPlainText(comment);
}

// ---- Unit and file ---------------------------------------------------------------------------------------------

bool WindowUser::hasSaid(const QString& result) const
{
    return !over.told.filter(result).isEmpty();
}

void WindowUser::read()
{
    const QString good = texts::resultReadOutputsOk() + QLatin1Char('\n') + texts::resultReadScriptsOk();
    properties::demand(untilGood([this, &good] { return over.read() && hasSaid(good); }), "not read");
}

void WindowUser::write()
{
    const QString good = texts::resultWriteOutputsOk() + QLatin1Char('\n') + texts::resultWriteScriptsOk();
    properties::demand(untilGood([this, &good] { return over.write() && hasSaid(good); }), "not written");
}

void WindowUser::save()
{
    over.dialogs.saveAnswers = QStringList{fileName()};
    over.trigger("actionSave");
    properties::demand(over.result().contains(texts::resultSaveOk()), "not saved");
}

void WindowUser::load()
{
    over.dialogs.openAnswers = QStringList{fileName()};
    over.trigger("actionLoad");
    properties::demand(over.result().contains(texts::resultLoadOk()), "not loaded");
}

void WindowUser::changeUnit(const UnitState& state)
{
    over.unit.change([&state](UnitState& unit) {
        unit.outputs = state.outputs;
        unit.scripts = state.scripts;
    });
}

// ---- What has come of it ---------------------------------------------------------------------------------------

QString WindowUser::faultOfWindow(const UserModel& expected) const
{
    // Below the terminals there is the row of a button, while an address is free.
    const int terminalCount = expected.shown.terminals.size();
    const int rows = terminalCount + (terminalCount < UnitState::addressCount ? 1 : 0);
    if (tree->topLevelItemCount() != rows) {
        return QStringLiteral("%1 rows in the tree, not %2").arg(tree->topLevelItemCount()).arg(rows);
    }
    return difference(QStringLiteral("the output"), over.label("labelTitleParamRelay")->text(), titleOf(expected)) +
           difference(QStringLiteral("the script in the editor"), over.label("labelNumScript")->text(),
                      QStringLiteral("№%1").arg(expected.script + 1)) +
           difference(QStringLiteral("its name"), over.get<QLineEdit>("lineEditNameScript")->text(),
                      expected.shown.scripts.at(expected.script).name) +
           difference(QStringLiteral("active scripts"), activeRows(activeScripts), activeRowsOf(expected)) +
           difference(QStringLiteral("names in the tree"), shownNames(expected), namesOf(expected));
}

/// Of the terminal that is worked on, and of its outputs.
QString WindowUser::shownNames(const UserModel& expected) const
{
    QTreeWidgetItem* const terminal = item(expected.terminal);
    QStringList names{part<QLabel>(terminal, "label")->text()};
    for (int i = 0; i < terminal->childCount(); ++i) {
        names.append(part<QLabel>(terminal->child(i), "label")->text());
    }
    return names.join(QLatin1Char('|'));
}

QString WindowUser::faultOfFile(const UserModel& expected) const
{
    const QString text = QString::fromUtf8(contentOfFile());
    QString comment = expected.shown.comment;
    comment.replace(QLatin1Char('\n'), QLatin1String("\r\n"));
    if (!text.startsWith(QLatin1String("[Comment]\r\n") + comment + QLatin1String("\r\n\r\n[Configuration]\r\n"))) {
        return QStringLiteral("another comment in the file");
    }
    const QStringList lines = text.split(QStringLiteral("\r\n"));
    const QSet<QString> present(lines.cbegin(), lines.cend());
    const QStringList wanted = expected.linesOfFile();
    for (const QString& line : wanted) {
        if (!present.contains(line)) {
            return QLatin1String("not in the file: ") + line;
        }
    }
    return {};
}

QString WindowUser::faultOfUnit(const UserModel& expected) const
{
    const UnitState state = over.unit.state();
    for (std::size_t address = 0; address < expected.unitOutputs.size(); ++address) {
        for (std::size_t number = 0; number < expected.unitOutputs.at(address).size(); ++number) {
            const QString fault =
                difference(QStringLiteral("output %1 of %2 in the unit").arg(number).arg(address),
                           QString::fromLatin1(state.outputs.at(address).at(number).toHex(' ')),
                           QString::fromLatin1(expected.unitOutputs.at(address).at(number).toHex(' ')));
            if (!fault.isEmpty()) {
                return fault;
            }
        }
    }
    for (std::size_t number = 0; number < expected.unitScripts.size(); ++number) {
        const QString fault = difference(QStringLiteral("script %1 in the unit").arg(number),
                                         QString::fromLatin1(state.scripts.at(number).toHex(' ')),
                                         QString::fromLatin1(expected.unitScripts.at(number).toHex(' ')));
        if (!fault.isEmpty()) {
            return fault;
        }
    }
    return {};
}
