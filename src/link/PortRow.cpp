#include "link/PortRow.h"

#include "link/StatePort.h"
#include "link/Transmitter.h"
#include "texts/texts.h"
#include "widgets/Look.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QTableWidgetItem>
#include <QThread>
#include <QTimer>

#include <chrono>

namespace
{

constexpr int Spacing = 3;

QTableWidgetItem* makeItem(const QString& text)
{
    auto* const item = new QTableWidgetItem(text);
    item->setTextAlignment(Qt::AlignCenter);
    item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    return item;
}

QTimer* makeTimer(QObject* owner)
{
    auto* const timer = new QTimer(owner);
    timer->setInterval(std::chrono::seconds(1));
    return timer;
}

QPushButton* makeButton(const QString& text, const QString& styleSheet)
{
    // Styles make every button so wide that the column couldn't hold two; their texts, at least, are never cut.
    constexpr int Padding = 8;
    auto* const button = new QPushButton(text);
    button->setFont(look::applicationFont());
    button->setStyleSheet(styleSheet);
    button->setMinimumWidth(button->fontMetrics().horizontalAdvance(text) + Padding);
    return button;
}

} // namespace

PortRow::PortRow(const QString& portName, std::function<message(const message&)> parseBootAnswer, QObject* timerOwner)
    : itemPortName(makeItem(portName)), itemBaudrate(makeItem(QStringLiteral("-"))),
      itemCoordinator(makeItem(QStringLiteral("-"))), itemSerial(makeItem(QStringLiteral("-"))),
      itemVersion(makeItem(QStringLiteral("-"))), itemState(makeItem(statePortTraits(StateConnecting).text)),
      cellWidget(new QWidget), checkBoxCheck(new QCheckBox(texts::wordChecking())),
      buttonConnect(makeButton(texts::buttonDisconnect(), QStringLiteral("background-color: red"))),
      buttonFirmware(makeButton(texts::actionFirmwareOfPort(), QStringLiteral("background-color: yellow"))),
      thread(new QThread), transmitter(new Transmitter), timerPeriodic(makeTimer(timerOwner)),
      timerFirstConnect(makeTimer(timerOwner))
{
    auto* const layout = new QHBoxLayout(cellWidget);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Spacing);
    checkBoxCheck->setFont(look::applicationFont());
    layout->addWidget(checkBoxCheck, 0, Qt::AlignCenter);
    layout->addWidget(buttonConnect, 0, Qt::AlignCenter);
    layout->addWidget(buttonFirmware, 0, Qt::AlignCenter);
    buttonFirmware->hide();
    thread->setObjectName(portName);
    transmitter->setBootParser(std::move(parseBootAnswer));
    transmitter->keepLateAnswersApart();
    transmitter->moveToThread(thread);
}
