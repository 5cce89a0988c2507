#include "link/PortRow.h"

#include "link/Port.h"
#include "texts/noValue.h"
#include "texts/texts.h"
#include "widgets/Look.h"

#include <QApplication>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QPalette>
#include <QPushButton>
#include <QTableWidget>
#include <QTableWidgetItem>

namespace
{

constexpr int spacing = 3;

QTableWidgetItem* makeItem(const QString& text)
{
    auto* const item = new QTableWidgetItem(text);
    item->setTextAlignment(Qt::AlignCenter);
    item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    return item;
}

QPushButton* makeButton(const QString& text, const QString& styleSheet)
{
    // Styles make every button so wide that the column couldn't hold two; their texts, at least, are never cut.
    constexpr int padding = 8;
    auto* const button = new QPushButton(text);
    button->setFont(look::applicationFont());
    button->setStyleSheet(styleSheet);
    button->setMinimumWidth(button->fontMetrics().horizontalAdvance(text) + padding);
    return button;
}

QString disconnectStyle()
{
    return QStringLiteral("background-color: red");
}

} // namespace

PortRow::PortRow(Port* shownPort)
    : port(shownPort), itemPortName(makeItem(port->name())), itemBaudrate(makeItem(texts::noValue())),
      itemCoordinator(makeItem(texts::noValue())), itemSerial(makeItem(texts::noValue())),
      itemVersion(makeItem(texts::noValue())), itemState(makeItem(statePortTraits(port->info().state).text())),
      itemControls(makeItem(QString())), cellWidget(new QWidget), checkBoxCheck(new QCheckBox(texts::wordChecking())),
      buttonConnect(makeButton(texts::buttonDisconnect(), disconnectStyle())),
      buttonFirmware(makeButton(texts::actionFirmwareOfPort(), QStringLiteral("background-color: yellow")))
{
    auto* const layout = new QHBoxLayout(cellWidget);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    checkBoxCheck->setFont(look::applicationFont());
    itemControls->setData(Qt::AccessibleTextRole, port->name());
    cellWidget->setAccessibleName(port->name());
    nameControls();
    layout->addWidget(checkBoxCheck, 0, Qt::AlignCenter);
    layout->addWidget(buttonConnect, 0, Qt::AlignCenter);
    layout->addWidget(buttonFirmware, 0, Qt::AlignCenter);
    buttonFirmware->hide();
}

/// Each row has the same controls; what tells them apart is the port.
void PortRow::nameControls() const
{
    const auto name = [this](QAbstractButton* control) {
        control->setAccessibleName(control->text() + QLatin1Char(' ') + port->name());
    };
    name(checkBoxCheck);
    name(buttonConnect);
    name(buttonFirmware);
}

void PortRow::refresh() const
{
    const PortInfo& info = port->info();
    const StatePortTraits& traits = statePortTraits(info.state);
    itemBaudrate->setText(info.lineBaudrate ? QString::number(*info.lineBaudrate) : texts::noValue());
    itemCoordinator->setText(info.coordinator
                                 ? texts::statusCoordinator() + QStringLiteral(" %1").arg(info.coordinator->address)
                                 : texts::noValue());
    itemSerial->setText(info.coordinator ? QString::number(info.coordinator->serial) : texts::noValue());
    itemVersion->setText(info.coordinator ? info.coordinator->versionText() : texts::noValue());
    itemState->setText(traits.text());
    itemState->setToolTip(info.trouble ? info.trouble->whatIsWrong() + QLatin1Char('\n') + info.trouble->whatToDo()
                                       : QString());
    const QWidget* const focus = QApplication::focusWidget();
    const bool isGoing = !traits.showControls || focus == (info.connected ? static_cast<QWidget*>(buttonFirmware)
                                                                          : static_cast<QWidget*>(checkBoxCheck));
    if (isGoing && cellWidget->isAncestorOf(focus)) {
        // Left to itself, the focus would go to the next row's button, which the next key would press.
        itemState->tableWidget()->setFocus();
    }
    cellWidget->setVisible(traits.showControls);
    // A style sheet takes its time, so it is set only when it has to be.
    const QString caption = info.connected ? texts::buttonDisconnect() : texts::buttonConnect();
    if (buttonConnect->text() != caption) {
        buttonConnect->setText(caption);
        buttonConnect->setStyleSheet(info.connected ? disconnectStyle() : QStringLiteral("background-color: green"));
        QPalette colors = buttonConnect->palette();
        // Black on this green has a contrast of 4.1 only.
        colors.setColor(QPalette::ButtonText, info.connected ? Qt::black : Qt::white);
        buttonConnect->setPalette(colors);
        nameControls();
    }
    checkBoxCheck->setVisible(info.connected);
    checkBoxCheck->setChecked(info.watched);
    // A firmware load opens the port by itself, so it is offered on a closed one.
    buttonFirmware->setVisible(!info.connected);
}
