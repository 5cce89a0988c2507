#include "link/FormChoiceCoordinator.h"

#include "link/ConfigurationReading.h"
#include "link/ConfigurationWriting.h"
#include "link/CoordinatorSearch.h"
#include "link/FormWaiting.h"
#include "link/LogReading.h"
#include "link/PortRow.h"
#include "link/TerminalSearch.h"
#include "link/Transmitter.h"
#include "link/protocol_HUBN_NX_Q.h"
#include "texts/texts.h"
#include "ui_FormChoiceCoordinator.h"
#include "widgets/Look.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QSemaphore>
#include <QSerialPortInfo>
#include <QStyle>
#include <QThread>
#include <QTimer>
#include <QWindow>

#include <algorithm>
#include <chrono>
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
constexpr int HeaderHeight = 50;
// Two lines of a state, and the buttons with some air around them.
constexpr int RowHeight = 44;

// A worker that the system keeps busy for longer is left alone; ms.
constexpr int ClosingTime = 300;

enum PortStatus : uchar
{
    StatusNotConnected = 0,
    StatusConnected = 1,
    StatusNotWatched = 2
};

QString noValue()
{
    return QStringLiteral("-");
}

/// Texts that say why a port is closed.
bool isCauseOfClosing(const QString& text)
{
    return text == texts::portOpenError() || text == texts::portNotFound() || text == texts::portCoordinatorNotFound();
}

} // namespace

FormChoiceCoordinator::FormChoiceCoordinator(CoordinatorSeams coordinatorSeams, QWidget* parent)
    : Form(parent, Qt::Window | Qt::WindowTitleHint | Qt::WindowCloseButtonHint), seams(std::move(coordinatorSeams)),
      ui(std::make_unique<Ui::FormChoiceCoordinator>()), timerPortList(new QTimer(this)),
      // A sibling, not a child, so that the window that stays below the busy form isn't this form, hidden by then.
      formWaiting(new FormWaiting(parent != nullptr ? parent : this)), timerNothingSent(new QTimer(this)),
      terminalSearch(new TerminalSearch(this)), configurationReading(new ConfigurationReading(this)),
      configurationWriting(new ConfigurationWriting(this)),
      logReading(new LogReading(this)), operations{terminalSearch, configurationReading, configurationWriting,
                                                   logReading}
{
    qRegisterMetaType<StatePort>("StatePort");
    setFont(look::applicationFont());
    ui->setupUi(this);
    setWindowTitle(texts::actionSelectCoordinator());
    setWindowModality(Qt::ApplicationModal);
    // The main window's closing ends the application also while this form is open, and this one's never does.
    setAttribute(Qt::WA_QuitOnClose, false);
    setGeometry(QStyle::alignedRect(Qt::LeftToRight, Qt::AlignCenter, size(),
                                    QGuiApplication::primaryScreen()->availableGeometry()));
    ui->buttonChoicePort->setText(texts::buttonSelect());
    setUpTable();
    setUpOperations();
    connect(timerPortList, &QTimer::timeout, this, &FormChoiceCoordinator::sl_updatePortList);
    timerPortList->start(std::chrono::seconds(1));
    sl_updatePortList();
}

// The ports' threads go on, but a port left open would keep its lock on the device beyond the process.
FormChoiceCoordinator::~FormChoiceCoordinator()
{
    const auto closed = std::make_shared<QSemaphore>();
    for (const PortRow* const row : std::as_const(portRows)) {
        Transmitter* const transmitter = row->transmitter;
        QMetaObject::invokeMethod(transmitter, [transmitter, closed] {
            transmitter->sl_ClosePort(transmitter);
            closed->release();
        });
    }
    closed->tryAcquire(portRows.size(), ClosingTime);
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
    table->horizontalHeader()->setFixedHeight(HeaderHeight);
    table->horizontalHeader()->setHighlightSections(false);
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table->verticalHeader()->setDefaultSectionSize(RowHeight);
    table->setStyleSheet(QStringLiteral("selection-background-color: rgb(230,230,230); selection-color: black"));
}

quint8 FormChoiceCoordinator::currentAddress() const
{
    return chosenAddress;
}

int FormChoiceCoordinator::currentBaudrate() const
{
    return chosenBaudrate;
}

void FormChoiceCoordinator::forceLogReading()
{
    logReading->forceNext();
}

void FormChoiceCoordinator::setFirmwareRunner(FirmwareRunner runner)
{
    firmwareRunner = std::move(runner);
}

// The list of ports.

void FormChoiceCoordinator::sl_updatePortList()
{
    const QStringList names = portNames();
    for (const QString& name : names) {
        const bool known = std::any_of(portRows.cbegin(), portRows.cend(),
                                       [&name](const PortRow* row) { return row->itemPortName->text() == name; });
        if (!known) {
            addPort(name);
        }
    }
    showNewRows();
}

QStringList FormChoiceCoordinator::portNames() const
{
    if (seams.portNames) {
        return seams.portNames();
    }
    QStringList names;
    const QList<QSerialPortInfo> ports = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo& port : ports) {
        names.append(port.portName());
    }
    return names;
}

void FormChoiceCoordinator::addPort(const QString& portName)
{
    auto* const row = new PortRow(portName, seams.parseBootAnswer, this);
    Transmitter* const transmitter = row->transmitter;
    portRows.append(row);

    connect(this, &FormChoiceCoordinator::sig_initTransmitter, transmitter, &Transmitter::sl_initialization);
    connect(this, &FormChoiceCoordinator::sig_CheckingPort, transmitter, &Transmitter::sl_CheckPort);
    connect(this, &FormChoiceCoordinator::sig_closePort, transmitter, &Transmitter::sl_ClosePort);
    connect(this, &FormChoiceCoordinator::sig_sendMessageInPort, transmitter, &Transmitter::sl_AddRequestInQueue);
    connect(transmitter, &Transmitter::sig_SendStatePort, this, &FormChoiceCoordinator::sl_setStatePort);
    connect(transmitter, &Transmitter::sig_SendBaudrate, this, &FormChoiceCoordinator::sl_setBaudratePort);
    connect(transmitter, &Transmitter::sig_SendAnswer, this, &FormChoiceCoordinator::sl_receiveAnswer);
    connect(row->buttonConnect, &QPushButton::clicked, this, &FormChoiceCoordinator::sl_buttonConnectPress);
    connect(row->buttonFirmware, &QPushButton::clicked, this, &FormChoiceCoordinator::sl_buttonFirmwarePress);
    connect(row->checkBoxCheck, &QCheckBox::clicked, this, &FormChoiceCoordinator::sl_checkBoxCheckCoordinatorPress);
    connect(row->timerPeriodic, &QTimer::timeout, this, &FormChoiceCoordinator::sl_periodicCheckCoordinator);
    connect(row->timerFirstConnect, &QTimer::timeout, this, &FormChoiceCoordinator::sl_tryFirstConnectCoordinator);

    row->thread->start(QThread::InheritPriority);
    emit sig_initTransmitter(transmitter, portName);
}

void FormChoiceCoordinator::showNewRows()
{
    QTableWidget* const table = ui->tableWidget;
    for (const PortRow* const row : std::as_const(portRows)) {
        if (table->row(row->itemPortName) != -1) {
            continue;
        }
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
    }
    fitTable();
}

/// Makes the table as wide as its columns, so that no empty strip stands beside them.
void FormChoiceCoordinator::fitTable()
{
    QTableWidget* const table = ui->tableWidget;
    const int frame = 2 * table->frameWidth();
    const bool overflows = table->verticalHeader()->length() > table->height() - frame - HeaderHeight;
    const int scrollBar = overflows ? table->verticalScrollBar()->sizeHint().width() : 0;
    table->setFixedWidth(table->horizontalHeader()->length() + frame + scrollBar);
}

template <typename Field>
PortRow* FormChoiceCoordinator::findRow(Field PortRow::*field, const QObject* object) const
{
    const auto found = std::find_if(portRows.cbegin(), portRows.cend(),
                                    [field, object](const PortRow* row) { return row->*field == object; });
    return found != portRows.cend() ? *found : nullptr;
}

PortRow* FormChoiceCoordinator::currentRow() const
{
    return currentTransmitter != nullptr ? findRow(&PortRow::transmitter, currentTransmitter) : nullptr;
}

// State of a port.

void FormChoiceCoordinator::sl_setStatePort(Transmitter* sender, StatePort state)
{
    PortRow* const row = findRow(&PortRow::transmitter, sender);
    if (row == nullptr) {
        return;
    }
    // A watched port neither disconnects nor searches by itself: the watch brings it back.
    if (row->checkBoxCheck->isChecked() && state != StateCoordinatorConnected && state != StatePortDisabled) {
        state = StateCoordinatorLost;
    }
    const StatePortTraits traits = statePortTraits(state);
    // The cause stays in view after the port has been closed for it.
    if (state != StatePortDisabled || !isCauseOfClosing(row->itemState->text())) {
        row->itemState->setText(traits.text);
    }
    row->cellWidget->setVisible(traits.showControls);
    if (sender == currentTransmitter) {
        const bool connected = row->itemState->text() == texts::portCoordinatorConnected();
        sendStatus(!row->checkBoxCheck->isChecked() ? StatusNotWatched
                   : connected                      ? StatusConnected
                                                    : StatusNotConnected,
                   *row);
    }
    if (traits.autoDisconnect) {
        row->buttonConnect->setText(texts::buttonDisconnect());
        emit row->buttonConnect->clicked(false);
    }
    if (state == StateSearching) {
        row->watchedAddress = noCoordinator;
        emit sig_sendMessageInPort(sender, CoordinatorSearch::begin());
    }
}

void FormChoiceCoordinator::sl_setBaudratePort(Transmitter* sender, int baudrate)
{
    if (const PortRow* const row = findRow(&PortRow::transmitter, sender)) {
        row->itemBaudrate->setText(QString::number(baudrate));
    }
}

void FormChoiceCoordinator::sl_buttonConnectPress()
{
    PortRow* const row = findRow(&PortRow::buttonConnect, QObject::sender());
    if (row == nullptr) {
        return;
    }
    const bool disconnecting = row->buttonConnect->text() == texts::buttonDisconnect();
    row->buttonConnect->setText(disconnecting ? texts::buttonConnect() : texts::buttonDisconnect());
    row->buttonConnect->setStyleSheet(disconnecting ? QStringLiteral("background-color: green")
                                                    : QStringLiteral("background-color: red"));
    if (disconnecting) {
        for (QTableWidgetItem* const item :
             {row->itemBaudrate, row->itemCoordinator, row->itemSerial, row->itemVersion}) {
            item->setText(noValue());
        }
        row->coordinatorAddress = noCoordinator;
        row->watchedAddress = noCoordinator;
    }
    row->checkBoxCheck->setVisible(!disconnecting);
    row->checkBoxCheck->setChecked(false);
    row->timerPeriodic->stop();
    // A firmware load opens the port by itself, so it is offered on a closed one.
    row->buttonFirmware->setVisible(disconnecting);
    if (disconnecting) {
        emit sig_closePort(row->transmitter);
    } else {
        emit sig_CheckingPort(row->transmitter, row->itemPortName->text());
    }
}

void FormChoiceCoordinator::sl_buttonFirmwarePress()
{
    PortRow* const row = findRow(&PortRow::buttonFirmware, QObject::sender());
    if (row == nullptr || !firmwareRunner) {
        return;
    }
    // An automatic search would close the port in the middle of a load; it comes back when the user is done here.
    const bool searchIsDue = row->timerFirstConnect->isActive();
    row->timerFirstConnect->stop();
    Transmitter* const transmitter = row->transmitter;
    isFirmwareAtHand = true;
    firmwareRunner({row->coordinatorAddress, row->baudrate,
                    [this, transmitter](const message& request) { emit sig_sendMessageInPort(transmitter, request); },
                    [this, transmitter](bool running) { firmwareTransmitter = running ? transmitter : nullptr; }});
    isFirmwareAtHand = false;
    if (searchIsDue) {
        row->timerFirstConnect->start();
    }
}

// Search and watch.

void FormChoiceCoordinator::sl_tryFirstConnectCoordinator()
{
    const PortRow* const row = findRow(&PortRow::timerFirstConnect, QObject::sender());
    if (row == nullptr) {
        return;
    }
    row->timerFirstConnect->stop();
    if (currentTransmitter == nullptr) {
        row->buttonConnect->setText(texts::buttonConnect());
        emit row->buttonConnect->clicked(false);
    }
}

void FormChoiceCoordinator::sl_checkBoxCheckCoordinatorPress()
{
    const PortRow* const row = findRow(&PortRow::checkBoxCheck, QObject::sender());
    if (row == nullptr) {
        return;
    }
    if (row->checkBoxCheck->isChecked()) {
        row->timerPeriodic->start();
        return;
    }
    row->timerPeriodic->stop();
    // What the watch saw last says nothing from now on.
    if (row->transmitter == currentTransmitter) {
        sendStatus(StatusNotWatched, *row);
    }
}

void FormChoiceCoordinator::sl_periodicCheckCoordinator()
{
    const PortRow* const row = findRow(&PortRow::timerPeriodic, QObject::sender());
    if (row == nullptr || row->transmitter == firmwareTransmitter) {
        return;
    }
    emit sig_sendMessageInPort(row->transmitter, CoordinatorSearch::check(row->watchedAddress, row->baudrate));
    message timeRequest = protocol_HUBN_NX_Q::requestDeviceTime(row->watchedAddress);
    timeRequest.setBaudrate(row->baudrate);
    emit sig_sendMessageInPort(row->transmitter, timeRequest);
}

void FormChoiceCoordinator::answerSearch(Transmitter* sender, const message& answer)
{
    PortRow* const row = findRow(&PortRow::transmitter, sender);
    if (row == nullptr) {
        return;
    }
    if (answer.requestType() == protocol_HUBN_NX_Q::Search_Broadcast && !answer.rawAnswer().isEmpty()) {
        row->baudrate = answer.baudrate();
    }
    const CoordinatorSearch::Step step = CoordinatorSearch::next(answer);
    switch (step.verdict) {
    case CoordinatorSearch::Verdict::Going:
        emit sig_sendMessageInPort(sender, step.request);
        break;
    case CoordinatorSearch::Verdict::Found:
        updateCoordinatorInfo(sender, step.coordinator);
        sl_setStatePort(sender, StateCoordinatorConnected);
        row->checkBoxCheck->setChecked(true);
        row->timerPeriodic->start();
        break;
    case CoordinatorSearch::Verdict::Silent:
        sl_setStatePort(sender, StateCoordinatorNotFound);
        if (currentTransmitter == nullptr && row->firstConnectAttempts != 0) {
            --row->firstConnectAttempts;
            row->timerFirstConnect->start();
        }
        break;
    case CoordinatorSearch::Verdict::Nameless:
        // Something that isn't a coordinator is no reason to come back by oneself.
        sl_setStatePort(sender, StateCoordinatorNotFound);
        break;
    }
}

bool FormChoiceCoordinator::isDisconnected(const Transmitter* transmitter) const
{
    const PortRow* const row = findRow(&PortRow::transmitter, transmitter);
    return row == nullptr || row->buttonConnect->text() != texts::buttonDisconnect();
}

void FormChoiceCoordinator::answerCheck(Transmitter* sender, const message& answer)
{
    // A check that was on its way when the port was disconnected has nothing to say any more.
    if (isDisconnected(sender)) {
        return;
    }
    if (CoordinatorSearch::isPresent(answer)) {
        updateCoordinatorInfo(sender, CoordinatorInfo::fromAnswer(answer));
        sl_setStatePort(sender, StateCoordinatorConnected);
    } else {
        sl_setStatePort(sender, StateCoordinatorLost);
    }
}

void FormChoiceCoordinator::updateCoordinatorInfo(Transmitter* transmitter, const CoordinatorInfo& info)
{
    PortRow* const row = findRow(&PortRow::transmitter, transmitter);
    row->coordinatorAddress = info.address;
    if (row->watchedAddress == noCoordinator) {
        row->watchedAddress = info.address;
    }
    row->itemCoordinator->setText(texts::statusCoordinator() + QStringLiteral(" %1").arg(info.address));
    row->itemSerial->setText(QString::number(info.serial));
    row->itemVersion->setText(info.versionText());
    // The first coordinator found is chosen without the user, though not over the dialogs of a load: the watch comes
    // back to it after them.
    if (currentTransmitter == nullptr && !isFirmwareAtHand) {
        ui->tableWidget->setCurrentItem(row->itemCoordinator);
        on_buttonChoicePort_clicked();
    }
}

// Choice of the current port.

void FormChoiceCoordinator::on_buttonChoicePort_clicked()
{
    const QTableWidgetItem* const chosen = ui->tableWidget->item(ui->tableWidget->currentRow(), ColumnCoordinator);
    const auto found = std::find_if(portRows.cbegin(), portRows.cend(),
                                    [chosen](const PortRow* row) { return row->itemCoordinator == chosen; });
    if (found != portRows.cend()) {
        choosePort(*found);
    }
    hide();
    if (chosenAddress == noCoordinator) {
        return;
    }
    timerNothingSent->stop();
    formWaiting->setOperation(texts::busySearchingTerminals(), 0, 1);
    formWaiting->show();
    if (found == portRows.cend()) {
        timerNothingSent->start();
    }
}

void FormChoiceCoordinator::choosePort(PortRow* row)
{
    if (currentTransmitter != nullptr) {
        disconnect(currentTransmitter, &Transmitter::sig_SendRequestInForm, this, nullptr);
        disconnect(currentTransmitter, &Transmitter::sig_SendAnswerInForm, this, nullptr);
    }
    currentTransmitter = row->transmitter;
    chosenAddress = row->coordinatorAddress;
    chosenBaudrate = row->baudrate;
    connect(currentTransmitter, &Transmitter::sig_SendRequestInForm, this,
            &FormChoiceCoordinator::sig_sendRequestOnForm);
    connect(currentTransmitter, &Transmitter::sig_SendAnswerInForm, this, &FormChoiceCoordinator::sig_sendAnswerOnForm);
    for (DeviceOperation* const operation : operations) {
        operation->setCoordinator(chosenAddress);
    }
    const bool hasCoordinator = chosenAddress != noCoordinator;
    if (hasCoordinator) {
        terminalSearch->start();
    }
    emit sig_sendEnableOperationOnForm(hasCoordinator);
    sendStatus(StatusNotWatched, *row);
}

void FormChoiceCoordinator::sendStatus(uchar statePort, const PortRow& row)
{
    emit sig_sendStatusSelectPortOnForm(statePort, row.itemPortName->text(), row.itemBaudrate->text(),
                                        row.coordinatorAddress, row.itemSerial->text(), row.itemVersion->text());
}

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
    if (currentTransmitter == nullptr) {
        emit sig_sendEnableOperationOnForm(false);
    }
    Form::closeEvent(event);
}
