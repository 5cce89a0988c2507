#include "ui/log/EventView.h"

#include "eventlog/EventFields.h"
#include "texts/texts.h"
#include "widgets/Look.h"
#include "widgets/ScreenRoom.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

namespace
{

constexpr int roomForText = 320; ///< of a value that may take several lines

enum FieldColumn
{
    ColumnName,
    ColumnValue,
    ColumnMeaning,
};

QLabel* makeLabel(const QString& objectName, const QString& text, QWidget* parent)
{
    auto* const label = new QLabel(text, parent);
    label->setObjectName(objectName);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    return label;
}

/// A line for each field. The names stand in grey, so that the values are what is read first.
QWidget* makeTable(const QList<EventField>& fields)
{
    auto* const table = new QWidget;
    auto* const layout = new QGridLayout(table);
    layout->setHorizontalSpacing(16);
    layout->setVerticalSpacing(4);
    for (int row = 0; row < fields.size(); ++row) {
        const EventField& field = fields.at(row);
        QLabel* const name = makeLabel(QStringLiteral("labelName%1").arg(row), field.name, table);
        QLabel* const value = makeLabel(QStringLiteral("labelValue%1").arg(row), field.value, table);
        QLabel* const meaning = makeLabel(QStringLiteral("labelMeaning%1").arg(row), field.meaning, table);
        QPalette grey = name->palette();
        grey.setColor(QPalette::WindowText, look::fadedText(grey));
        name->setPalette(grey);
        layout->addWidget(name, row, ColumnName);
        if (field.meaning.isEmpty()) {
            // The texts of an event may be long.
            value->setWordWrap(true);
            value->setMinimumWidth(roomForText);
            layout->addWidget(value, row, ColumnValue, 1, 2);
        } else {
            layout->addWidget(value, row, ColumnValue);
            layout->addWidget(meaning, row, ColumnMeaning);
        }
    }
    layout->setColumnStretch(ColumnMeaning, 1);
    layout->setRowStretch(fields.size(), 1);
    return table;
}

} // namespace

EventView::EventView(const QAbstractItemModel& log, int row, QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("eventView"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    screenRoom::keep(this);
    const QList<EventField> fields = fieldsOfEvent(log, row);
    setWindowTitle(texts::eventTitle().arg(fields.first().value));

    auto* const layout = new QVBoxLayout(this);
    auto* const area = new QScrollArea(this);
    area->setFrameShape(QFrame::NoFrame);
    area->setAccessibleName(windowTitle());
    area->setWidgetResizable(true);
    area->setWidget(makeTable(fields));
    area->setMinimumWidth(area->widget()->sizeHint().width() + area->verticalScrollBar()->sizeHint().width());
    layout->addWidget(area);

    auto* const buttons = new QDialogButtonBox(this);
    connect(buttons->addButton(texts::eventClose(), QDialogButtonBox::RejectRole), &QPushButton::clicked, this,
            &QDialog::close);
    layout->addWidget(buttons);
    resize(sizeHint().width(), area->widget()->sizeHint().height() + buttons->sizeHint().height() + 40);
}
