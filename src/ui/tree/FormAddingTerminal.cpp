#include "ui/tree/FormAddingTerminal.h"

#include "model/RelayInfo.h"
#include "texts/texts.h"
#include "ui_FormAddingTerminal.h"
#include "widgets/Look.h"
#include "widgets/ScreenRoom.h"
#include "widgets/Spoken.h"

#include <QEvent>
#include <QKeyEvent>
#include <QScreen>
#include <QShowEvent>

#include <algorithm>
#include <utility>

namespace
{

constexpr int addressCount = 32;
constexpr int maximumOutputs = 2;

} // namespace

FormAddingTerminal::FormAddingTerminal(QSharedPointer<RelayInfo> info, QWidget* parent)
    : Form(parent, Qt::Window), ui(std::make_unique<Ui::FormAddingTerminal>()), relayInfo(std::move(info)),
      terminals({{texts::otherTerminal(), {}}})
{
    ui->setupUi(this);
    setFont(look::applicationFont());
    outputs = {{ui->labelOutput1, ui->lineEditOutput1},
               {ui->labelOutput2, ui->lineEditOutput2},
               {ui->labelOutput3, ui->lineEditOutput3},
               {ui->labelOutput4, ui->lineEditOutput4}};
    for (QComboBox* combo : {ui->comboBoxTerminals, ui->comboBoxAddress}) {
        combo->setStyleSheet(QStringLiteral("combobox-popup: 0;"));
    }
    setTexts();
    if (parent != nullptr) {
        parent->installEventFilter(this);
    }
}

FormAddingTerminal::~FormAddingTerminal() = default;

void FormAddingTerminal::setTexts()
{
    setWindowTitle(texts::addTerminalTitle());
    spoken::nameBy(ui->comboBoxTerminals, ui->labelChoice, texts::addTerminalModel());
    spoken::nameBy(ui->lineEditTerminal, ui->labelName, texts::addTerminalName());
    spoken::nameBy(ui->spinBoxOutputs, ui->labelNum, texts::addTerminalOutputCount());
    spoken::nameBy(ui->lineEditOutput1, ui->labelOutput1, texts::addTerminalOutput1());
    spoken::nameBy(ui->lineEditOutput2, ui->labelOutput2, texts::addTerminalOutput2());
    spoken::nameBy(ui->lineEditOutput3, ui->labelOutput3, texts::addTerminalOutput3());
    spoken::nameBy(ui->lineEditOutput4, ui->labelOutput4, texts::addTerminalOutput4());
    spoken::nameBy(ui->comboBoxAddress, ui->labelTitleaddress, texts::addTerminalAddress());
    ui->pushButton->setText(texts::buttonAdd());
    ui->pushButtonClose->setText(texts::buttonCancel());
}

void FormAddingTerminal::addTerminal(bool first, const QString& name, const QStringList& outputNames)
{
    if (first) {
        terminals = {{texts::otherTerminal(), {}}};
    }
    terminals.append({name, outputNames});
}

bool FormAddingTerminal::eventFilter(QObject* watched, QEvent* event)
{
    // Minimising hides the window as well, but it is the platform that does it.
    if (event->type() == QEvent::Hide && !event->spontaneous()) {
        close();
    }
    return Form::eventFilter(watched, event);
}

void FormAddingTerminal::showEvent(QShowEvent* event)
{
    Form::showEvent(event);
    // Coming back from an icon is no new showing.
    if (!event->spontaneous()) {
        placeOverWindow();
        ui->comboBoxTerminals->setFocus();
        fillTerminals();
        fillAddresses();
        ui->spinBoxOutputs->setMaximum(maximumOutputs);
    }
}

void FormAddingTerminal::placeOverWindow()
{
    if (parentWidget() == nullptr) {
        return;
    }
    const QWidget* window = parentWidget()->window();
    const QRect room = window->frameGeometry() & window->screen()->availableGeometry();
    screenRoom::centre(this, size(), room);
}

void FormAddingTerminal::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        ui->pushButton->click();
    } else if (event->matches(QKeySequence::Cancel)) {
        ui->pushButtonClose->click();
    } else {
        Form::keyPressEvent(event);
    }
}

void FormAddingTerminal::fillTerminals()
{
    ui->comboBoxTerminals->clear();
    ui->comboBoxTerminals->setFont(look::applicationFont());
    for (const TerminalChoice& choice : std::as_const(terminals)) {
        ui->comboBoxTerminals->addItem(choice.name);
    }
    ui->comboBoxTerminals->setCurrentText(texts::otherTerminal());
    on_comboBoxTerminals_currentIndexChanged(texts::otherTerminal());
}

void FormAddingTerminal::fillAddresses()
{
    ui->comboBoxAddress->clear();
    ui->comboBoxAddress->setFont(look::applicationFont());
    QStringList addresses = freeAddresses();
    if (addresses.isEmpty()) {
        addresses.append(QStringLiteral("---"));
        ui->pushButton->setEnabled(false); // for good: no later showing enables it again
    }
    ui->comboBoxAddress->addItems(addresses);
}

QStringList FormAddingTerminal::freeAddresses() const
{
    QStringList addresses;
    for (int address = 0; address < addressCount; ++address) {
        if (!relayInfo->findGroup(quint16(address))) {
            addresses.append(QString::number(address));
        }
    }
    return addresses;
}

void FormAddingTerminal::on_comboBoxTerminals_currentIndexChanged(const QString& text)
{
    const auto found = std::find_if(terminals.cbegin() + 1, terminals.cend(),
                                    [&text](const TerminalChoice& choice) { return choice.name == text; });
    const bool isModel = found != terminals.cend();
    const QStringList names = isModel ? found->outputs : QStringList();
    ui->lineEditTerminal->setText(isModel ? text : texts::defaultTerminalName());
    ui->lineEditTerminal->setEnabled(!isModel);
    for (int i = 0; i < outputs.size(); ++i) {
        outputs.at(i).edit->setText(names.value(i, texts::defaultOutputName()));
    }
    ui->spinBoxOutputs->setValue(isModel ? qMin(names.size(), maximumOutputs) : 1);
    on_spinBoxOutputs_valueChanged(ui->spinBoxOutputs->value());
    ui->spinBoxOutputs->setEnabled(!isModel);
}

void FormAddingTerminal::on_spinBoxOutputs_valueChanged(int arg1)
{
    for (int i = 0; i < outputs.size(); ++i) {
        outputs.at(i).label->setVisible(i < arg1);
        outputs.at(i).edit->setVisible(i < arg1);
    }
}

void FormAddingTerminal::on_pushButtonClose_clicked()
{
    close();
}

void FormAddingTerminal::on_pushButton_clicked()
{
    const QString address = ui->comboBoxAddress->currentText();
    // A reading may have brought a terminal to this address since the form was shown: the user chooses again.
    if (!freeAddresses().contains(address)) {
        fillAddresses();
        ui->comboBoxAddress->setFocus();
        return;
    }
    QStringList names;
    for (int i = 0; i < ui->spinBoxOutputs->value(); ++i) {
        names.append(outputs.at(i).edit->text());
    }
    emit sig_addNewGroupRelay(ui->lineEditTerminal->text(), address.toShort(), names);
    close();
}
