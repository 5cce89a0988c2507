#include "ui/log/PacketLogger.h"

#include "texts/texts.h"

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
constexpr int longestShortText = 24; ///< no column cuts a text of this length
constexpr std::array<int, 3> columnWidths{140, 200, 140};

QString timeText(const QDateTime& time)
{
    return time.toString(QStringLiteral("dd/MM/yy hh:mm:ss:zzz"));
}

// toHex() sets no blank behind the last byte.
QString bytesText(const QByteArray& bytes)
{
    return bytes.isEmpty() ? QString() : QString::fromLatin1(bytes.toHex(' ')) + QLatin1Char(' ');
}

} // namespace

PacketLogger::PacketLogger(QTableWidget* table_, QPushButton* stopButton_, QPushButton* clearButton,
                           QCheckBox* periodicBox_)
    : table(table_), stopButton(stopButton_), periodicBox(periodicBox_)
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

void PacketLogger::setCell(int column, const QString& text)
{
    auto* item = new QTableWidgetItem(text);
    if (text.size() > longestShortText) {
        // Marked up as a paragraph, so that the tool tip breaks its lines.
        item->setToolTip(QStringLiteral("<p>%1</p>").arg(text.toHtmlEscaped()));
    }
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
    setCell(ColumnRequestTime, timeText(time));
    setCell(ColumnRequest, bytesText(request));
}

void PacketLogger::logAnswer(const QDateTime& time, const QByteArray& answer, bool periodic)
{
    if (!isWanted(periodic) || table->rowCount() == 0) {
        return;
    }
    const QString text =
        answer.isEmpty() ? QStringLiteral("-----<%1>-----").arg(texts::wordNoAnswer()) : bytesText(answer);
    setCell(ColumnAnswerTime, timeText(time));
    setCell(ColumnAnswer, text);
}

void PacketLogger::showStopped(bool stopped)
{
    stopButton->setText(stopped ? texts::buttonStart() : texts::buttonStop());
}

void PacketLogger::clear()
{
    table->clearContents();
}
