#include "link/FormChoiceCoordinator.h"

#include "link/FormWaiting.h"
#include "link/PortRow.h"
#include "texts/texts.h"
#include "ui_FormChoiceCoordinator.h"
#include "widgets/EmptyTableText.h"
#include "widgets/Look.h"
#include "widgets/ScreenRoom.h"
#include "widgets/WholeTextTips.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QWindow>

#include <algorithm>
#include <array>
#include <utility>

namespace
{

enum Column
{
    ColumnPortName,
    ColumnBaudrate,
    ColumnCoordinator,
    ColumnSerial,
    ColumnVersion,
    ColumnState,
    ColumnControls,
    ColumnCount
};

constexpr std::array<int, ColumnCount> columnWidths{67, 69, 104, 82, 82, 223, 167};
constexpr int leastStateWidth = 112;
constexpr int headerHeight = 50;
// Two lines of a state, and the buttons with some air around them.
constexpr int rowHeight = 44;

} // namespace

FormChoiceCoordinator::FormChoiceCoordinator(CoordinatorSeams seams, Transmitter::BootParser parseBootAnswer,
                                             QWidget* parent)
    : Form(parent, Qt::Window | Qt::WindowTitleHint | Qt::WindowCloseButtonHint),
      link(std::move(seams), std::move(parseBootAnswer), this), ui(std::make_unique<Ui::FormChoiceCoordinator>()),
      // A sibling, not a child, so that the window that stays below the busy form isn't this form, hidden by then.
      formWaiting(new FormWaiting(parent != nullptr ? parent : this))
{
    setFont(look::applicationFont());
    ui->setupUi(this);
    setWindowTitle(texts::actionSelectCoordinator());
    setWindowModality(Qt::ApplicationModal);
    // The main window's closing ends the application also while this form is open, and this one's never does.
    setAttribute(Qt::WA_QuitOnClose, false);
    screenRoom::centre(this, size(), QGuiApplication::primaryScreen()->availableGeometry());
    ui->buttonChoicePort->setText(texts::buttonSelect());
    setUpTable();
    connectLink();
    connectOperations();
    link.start();
}

FormChoiceCoordinator::~FormChoiceCoordinator()
{
    qDeleteAll(portRows);
}

void FormChoiceCoordinator::setUpTable()
{
    QTableWidget* const table = ui->tableWidget;
    table->setColumnCount(ColumnCount);
    table->setHorizontalHeaderLabels({texts::portColumnName(), texts::portColumnBaudrate(),
                                      texts::portColumnCoordinator(), texts::portColumnSerial(),
                                      texts::portColumnVersion(), texts::portColumnState(), QString()});
    for (int column = 0; column < ColumnCount; ++column) {
        table->setColumnWidth(column, columnWidths.at(column));
    }
    // Below a widget with a style sheet no font is inherited that is set on the application later.
    table->horizontalHeader()->setFont(look::applicationFont());
    table->horizontalHeader()->setFixedHeight(headerHeight);
    table->horizontalHeader()->setHighlightSections(false);
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table->verticalHeader()->setDefaultSectionSize(rowHeight);
    table->setTextElideMode(Qt::ElideMiddle); // names of ports differ at their ends
    table->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    table->setItemDelegate(new WholeTextTips(table));
    setUpKeys();
    table->setAccessibleName(texts::actionSelectCoordinator());
    table->setStyleSheet(QStringLiteral("selection-background-color: rgb(230,230,230); selection-color: black"));
    new EmptyTableText(table, texts::portsNone());
}

void FormChoiceCoordinator::connectLink()
{
    using Link = CoordinatorLink;
    using Choice = FormChoiceCoordinator;
    connect(&link, &Link::portAdded, this, &Choice::addRow);
    connect(&link, &Link::portListUpdated, this, &Choice::fitTable);
    connect(&link, &Link::portListUpdated, this, &Choice::checkTrouble);
    connect(&link, &Link::foundFirst, this, &Choice::selectRow);
    connect(&link, &Link::chosen, this, &Choice::hide);
    connect(&link, &Link::statusReported, this, &Choice::sendStatus);
    connect(&link, &Link::operationsEnabled, this, &Choice::sig_sendEnableOperationOnForm);
    connect(&link, &Link::requestDropped, this,
            [this](const message& request) { emit sig_sendMessageInPort(nullptr, request); });
    connect(&link, &Link::requestShown, this, &Choice::sig_sendRequestOnForm);
    connect(&link, &Link::answerShown, this, &Choice::sig_sendAnswerOnForm);
    connect(&link, &Link::busyBegun, formWaiting, &FormWaiting::setOperation);
    connect(&link, &Link::busyTextChanged, formWaiting, &FormWaiting::setOperationText);
    connect(&link, &Link::busyMaximumChanged, formWaiting, &FormWaiting::setProgressMaximum);
    connect(&link, &Link::busyStepDone, formWaiting, &FormWaiting::stepProgress);
    connect(&link, &Link::busyShown, formWaiting, &FormWaiting::show);
    connect(&link, &Link::busyHidden, formWaiting, &FormWaiting::hide);
}

void FormChoiceCoordinator::connectOperations()
{
    using Link = CoordinatorLink;
    using Choice = FormChoiceCoordinator;
    connect(&link, &Link::outputsRead, this, &Choice::sig_sendReadConfigOnForm);
    connect(&link, &Link::scriptsRead, this, &Choice::sig_sendReadScriptOnForm);
    connect(&link, &Link::logRead, this, &Choice::sig_sendReadLogOnForm);
    connect(&link, &Link::logIncomplete, this, &Choice::logIncomplete);
    connect(&link, &Link::logNotNecessary, this, &Choice::sig_ReadLogNotNeccessary);
    connect(&link, &Link::terminalsFound, this, &Choice::sig_sendListTerminalsOnForm);
    connect(&link, &Link::deviceTimeRead, this, &Choice::sig_sendDeviceTimeOnForm);
    connect(&link, &Link::resultReady, this, &Choice::sig_sendResultOperation);
    connect(&link, &Link::firmwareAnswered, this, &Choice::sig_sendAnswerFirmWare);
}

// The table.

void FormChoiceCoordinator::addRow(Port* port)
{
    auto* const row = new PortRow(port);
    portRows.append(row);
    using Choice = FormChoiceCoordinator;
    connect(port, &Port::initRequested, this, &Choice::sig_initTransmitter);
    connect(port, &Port::openRequested, this, &Choice::sig_CheckingPort);
    connect(port, &Port::closeRequested, this, &Choice::sig_closePort);
    connect(port, &Port::sendRequested, this, &Choice::sig_sendMessageInPort);
    connect(port, &Port::changed, this, [row] { row->refresh(); });
    connect(row->buttonConnect, &QPushButton::clicked, this, &Choice::sl_buttonConnectPress);
    connect(row->buttonFirmware, &QPushButton::clicked, this, &Choice::sl_buttonFirmwarePress);
    connect(row->checkBoxCheck, &QCheckBox::toggled, port, &Port::noteWatched);
    connect(row->checkBoxCheck, &QCheckBox::clicked, this, &Choice::sl_checkBoxCheckCoordinatorPress);

    QTableWidget* const table = ui->tableWidget;
    const int index = table->rowCount();
    table->insertRow(index);
    table->setItem(index, ColumnPortName, row->itemPortName);
    table->setItem(index, ColumnBaudrate, row->itemBaudrate);
    table->setItem(index, ColumnCoordinator, row->itemCoordinator);
    table->setItem(index, ColumnSerial, row->itemSerial);
    table->setItem(index, ColumnVersion, row->itemVersion);
    table->setItem(index, ColumnState, row->itemState);
    // The table shows the widgets of its cells whenever it lays them out; a frame around the controls lets them
    // stay hidden.
    auto* const frame = new QWidget;
    auto* const layout = new QHBoxLayout(frame);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(row->cellWidget);
    table->setCellWidget(index, ColumnControls, frame);
    table->setItem(index, ColumnControls, row->itemControls);
    setTabOrderOfRow(index);
}

/// Makes the table as wide as its columns, so that no empty strip stands beside them. Where the form is narrower than
/// that, the state gives way, which then takes more lines, and for the rest the table scrolls.
void FormChoiceCoordinator::fitTable()
{
    QTableWidget* const table = ui->tableWidget;
    const int frame = 2 * table->frameWidth();
    const bool overflows = table->verticalHeader()->length() > table->height() - frame - headerHeight;
    const int scrollBar = overflows ? table->verticalScrollBar()->sizeHint().width() : 0;
    const QMargins margins = layout()->contentsMargins();
    const int room = width() - margins.left() - margins.right();
    const int width = table->columnWidth(ColumnState);
    const int missing = table->horizontalHeader()->length() + frame + scrollBar - room;
    const int possible = qMax(qMin(leastStateWidth, width), width - missing);
    if (missing > 0) {
        isStateSqueezed = true;
        table->setColumnWidth(ColumnState, possible);
    } else if (isStateSqueezed) {
        table->setColumnWidth(ColumnState, qMin(columnWidths[ColumnState], possible));
        isStateSqueezed = possible < columnWidths[ColumnState];
    }
    table->setFixedWidth(qMin(table->horizontalHeader()->length() + frame + scrollBar, room));
}

/// While somebody may look at it: the cause for which a port can't be used may change by itself. One port at a time,
/// since to look for the program that holds it reads through all processes.
void FormChoiceCoordinator::checkTrouble()
{
    const int count = portRows.size();
    for (int i = 1; isVisible() && i <= count; ++i) {
        const int row = (checkedRow + i) % count;
        if (portRows.at(row)->port->info().trouble) {
            checkedRow = row;
            portRows.at(row)->port->checkTrouble();
            return;
        }
    }
}

template <typename Field, typename Object>
PortRow* FormChoiceCoordinator::findRow(Field PortRow::*field, const Object* object) const
{
    const auto found = std::find_if(portRows.cbegin(), portRows.cend(),
                                    [field, object](const PortRow* row) { return row->*field == object; });
    return found != portRows.cend() ? *found : nullptr;
}

void FormChoiceCoordinator::selectRow(const Port* port)
{
    if (const PortRow* const row = findRow(&PortRow::port, port)) {
        ui->tableWidget->setCurrentItem(row->itemCoordinator);
    }
}

void FormChoiceCoordinator::sendStatus(PortStatus status)
{
    if (const PortRow* const row = findRow(&PortRow::port, link.currentPort())) {
        emit sig_sendStatusSelectPortOnForm(static_cast<uchar>(status), row->port->name(), row->itemBaudrate->text(),
                                            row->port->address(), row->itemSerial->text(), row->itemVersion->text());
    }
}

// What the user does.

void FormChoiceCoordinator::on_buttonChoicePort_clicked()
{
    const QTableWidgetItem* const chosen = ui->tableWidget->item(ui->tableWidget->currentRow(), ColumnCoordinator);
    const PortRow* const row = findRow(&PortRow::itemCoordinator, chosen);
    link.choose(row != nullptr ? row->port : nullptr);
}

void FormChoiceCoordinator::sl_buttonConnectPress()
{
    if (const PortRow* const row = findRow(&PortRow::buttonConnect, QObject::sender())) {
        if (row->buttonConnect->text() == texts::buttonDisconnect()) {
            row->port->close();
        } else {
            row->port->open();
        }
    }
}

void FormChoiceCoordinator::sl_buttonFirmwarePress()
{
    if (const PortRow* const row = findRow(&PortRow::buttonFirmware, QObject::sender())) {
        link.loadFirmware(*row->port);
    }
}

void FormChoiceCoordinator::sl_checkBoxCheckCoordinatorPress()
{
    if (const PortRow* const row = findRow(&PortRow::checkBoxCheck, QObject::sender())) {
        row->port->setWatched(row->checkBoxCheck->isChecked());
    }
}

// What goes to the link as it is.

void FormChoiceCoordinator::sl_setStatePort(Transmitter* sender, StatePort state)
{
    if (Port* const port = link.portOf(sender)) {
        port->setState(state);
    }
}

void FormChoiceCoordinator::sl_setBaudratePort(Transmitter* sender, int baudrate)
{
    if (Port* const port = link.portOf(sender)) {
        port->setLineBaudrate(baudrate);
    }
}

void FormChoiceCoordinator::sl_receiveAnswer(Transmitter* sender, const message& answer)
{
    if (Port* const port = link.portOf(sender)) {
        port->takeAnswer(answer);
    }
}

Port* FormChoiceCoordinator::portOfTimer() const
{
    return QObject::sender() != nullptr ? qobject_cast<Port*>(QObject::sender()->parent()) : nullptr;
}

void FormChoiceCoordinator::sl_periodicCheckCoordinator()
{
    if (Port* const port = portOfTimer()) {
        port->checkCoordinator();
    }
}

void FormChoiceCoordinator::sl_tryFirstConnectCoordinator()
{
    if (Port* const port = portOfTimer()) {
        port->repeatSearch();
    }
}

void FormChoiceCoordinator::sl_HideFormWaiting()
{
    formWaiting->hide();
}

// The window.

void FormChoiceCoordinator::showEvent(QShowEvent* event)
{
    // Shown before the main window has a native window, this form wouldn't know to stay above it.
    if (parentWidget() != nullptr && windowHandle() != nullptr && windowHandle()->transientParent() == nullptr) {
        parentWidget()->window()->winId();
        windowHandle()->setTransientParent(parentWidget()->window()->windowHandle());
    }
    Form::showEvent(event);
}

void FormChoiceCoordinator::resizeEvent(QResizeEvent* event)
{
    Form::resizeEvent(event);
    layout()->activate();
    fitTable();
}

void FormChoiceCoordinator::closeEvent(QCloseEvent* event)
{
    if (link.currentPort() == nullptr) {
        emit sig_sendEnableOperationOnForm(false);
    }
    Form::closeEvent(event);
}
