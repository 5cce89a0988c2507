#include "ui/log/PacketLogger.h"

#include "texts/texts.h"
#include "widgets/WholeTextTips.h"

#include <QByteArray>
#include <QCheckBox>
#include <QDateTime>
#include <QHeaderView>
#include <QPushButton>
#include <QString>
#include <QTableWidget>

#include <array>

namespace
{

enum Column
{
    ColumnRequestTime,
    ColumnRequest,
    ColumnAnswerTime,
    ColumnAnswer,
};

constexpr int maximumRows = 2000;
constexpr std::array<int, 3> columnWidths{140, 200, 140};

/// Where an item keeps its packet.
enum Role
{
    TimeRole = Qt::UserRole,
    BytesRole
};

/// The bytes of a packet, which it tells in words only when they are asked for: most packets are never looked at.
class PacketItem : public QTableWidgetItem
{
public:
    using QTableWidgetItem::QTableWidgetItem;

    QVariant data(int role) const override
    {
        if (role != Qt::ToolTipRole || tableWidget() == nullptr) {
            return QTableWidgetItem::data(role);
        }
        // Marked up as a paragraph, so that the tool tip breaks its lines.
        const QString bytes = QStringLiteral("<p>%1</p>").arg(text().toHtmlEscaped());
        return bytes +
               words().join(QLatin1Char('\n')).toHtmlEscaped().replace(QLatin1Char('\n'), QLatin1String("<br>"));
    }

private:
    QStringList words() const
    {
        const QTableWidgetItem* const item = tableWidget()->item(row(), ColumnRequest);
        const QByteArray request = item != nullptr ? item->data(BytesRole).toByteArray() : QByteArray();
        return column() == ColumnRequest ? packettext::requestInWords(request)
                                         : packettext::answerInWords(data(BytesRole).toByteArray(), request);
    }
};

// toHex() sets no blank behind the last byte.
QString bytesText(const QByteArray& bytes)
{
    return bytes.isEmpty() ? QString() : QString::fromLatin1(bytes.toHex(' ')) + QLatin1Char(' ');
}

} // namespace

PacketLogger::PacketLogger(QTableWidget* packetTable, QPushButton* stop, QPushButton* clearButton, QCheckBox* periodic)
    : table(packetTable), stopButton(stop), periodicBox(periodic)
{
    table->setColumnCount(4);
    table->setHorizontalHeaderLabels(
        {texts::loggerTimeOfRequest(), texts::loggerRequest(), texts::loggerTimeOfAnswer(), texts::loggerAnswer()});
    table->horizontalHeader()->setDefaultAlignment(Qt::AlignCenter);
    for (int column = 0; column < int(columnWidths.size()); ++column) {
        table->setColumnWidth(column, columnWidths.at(std::size_t(column)));
    }
    table->horizontalHeader()->setStretchLastSection(true);

    table->setShowGrid(true);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setWordWrap(false);
    table->setItemDelegate(new WholeTextTips(table));
    table->setTabKeyNavigation(false); // or Tab would never leave it
    table->setStyleSheet(QStringLiteral("selection-background-color: rgb(230,230,230); selection-color: black"));
    // Rows of one fixed height: a row costs no measuring of texts.
    table->verticalHeader()->hide();
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().height() + 6);

    stopButton->setText(texts::buttonStop());
    clearButton->setText(texts::buttonClear());
}

bool PacketLogger::isWanted(bool periodic) const
{
    return !stopButton->isChecked() && (!periodic || periodicBox->isChecked());
}

void PacketLogger::setPacket(int column, const Packet& packet, const QString& text)
{
    const QString time = packet.time.toString(QStringLiteral("dd/MM/yy hh:mm:ss:zzz"));
    table->setItem(0, column - 1, new QTableWidgetItem(time));
    auto* item = new PacketItem(text);
    item->setData(TimeRole, packet.time);
    item->setData(BytesRole, packet.bytes);
    table->setItem(0, column, item);
}

void PacketLogger::logRequest(const QDateTime& time, const QByteArray& request, bool periodic)
{
    if (!isWanted(periodic)) {
        return;
    }
    if (table->rowCount() >= maximumRows) {
        table->removeRow(table->rowCount() - 1);
    }
    table->insertRow(0);
    setPacket(ColumnRequest, {time, Packet::Request, request}, bytesText(request));
}

void PacketLogger::logAnswer(const QDateTime& time, const QByteArray& answer, bool periodic)
{
    if (!isWanted(periodic) || table->rowCount() == 0) {
        return;
    }
    const QString text =
        answer.isEmpty() ? QStringLiteral("-----<%1>-----").arg(texts::wordNoAnswer()) : bytesText(answer);
    setPacket(ColumnAnswer, {time, Packet::Answer, answer}, text);
}

void PacketLogger::showStopped(bool stopped)
{
    stopButton->setText(stopped ? texts::buttonStart() : texts::buttonStop());
}

void PacketLogger::clear()
{
    table->clearContents();
}

QList<Packet> PacketLogger::packets() const
{
    QList<Packet> packets;
    for (int row = table->rowCount() - 1; row >= 0; --row) {
        for (const Column column : {ColumnRequest, ColumnAnswer}) {
            const QTableWidgetItem* const item = table->item(row, column);
            if (item != nullptr) {
                packets.append({item->data(TimeRole).toDateTime(),
                                column == ColumnRequest ? Packet::Request : Packet::Answer,
                                item->data(BytesRole).toByteArray()});
            }
        }
    }
    return packets;
}
