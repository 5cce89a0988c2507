#include "ui/pickers/SpecialTimeFrame.h"

#include "ui_SpecialTimeFrame.h"

namespace
{

/// One step in the direction of an arrow box, which then springs back; that change comes here again with 0.
void step(QSpinBox* field, QSpinBox* arrows, int direction)
{
    if (direction != 0) {
        field->setValue(field->value() + (direction > 0 ? 1 : -1));
        arrows->setValue(0);
    }
}

/// Takes a value just outside the range to the other end. Returns false if it was inside.
bool wrap(QSpinBox* field, int value, int last)
{
    if (value < 0) {
        field->setValue(last);
    } else if (value > last) {
        field->setValue(0);
    } else {
        return false;
    }
    return true;
}

/// Enter in one field goes on to the other. Losing the focus ends an editing as well, and then nothing is to be done.
void goOn(QSpinBox* from, QSpinBox* to)
{
    if (from->hasFocus()) {
        to->selectAll();
        to->setFocus(Qt::OtherFocusReason);
    }
}

} // namespace

SpecialTimeFrame::SpecialTimeFrame(QWidget* parent) : QFrame(parent), ui(std::make_unique<Ui::SpecialTimeFrame>())
{
    ui->setupUi(this);
    ui->ArrowHour->setFocusProxy(ui->spinBoxHour);
    ui->ArrowMinute->setFocusProxy(ui->spinBoxMinute);

    // clang-format off
    connect(ui->ArrowHour, SIGNAL(valueChanged(int)), this, SLOT(sl_ArrowHour_valueChanged(int))); // clazy:exclude=old-style-connect
    connect(ui->spinBoxHour, SIGNAL(valueChanged(int)), this, SLOT(sl_spinBoxHour_valueChanged(int))); // clazy:exclude=old-style-connect
    connect(ui->spinBoxHour, SIGNAL(editingFinished()), this, SLOT(sl_spinBoxHour_editingFinished())); // clazy:exclude=old-style-connect
    connect(ui->ArrowMinute, SIGNAL(valueChanged(int)), this, SLOT(sl_ArrowMinute_valueChanged(int))); // clazy:exclude=old-style-connect
    connect(ui->spinBoxMinute, SIGNAL(valueChanged(int)), this, SLOT(sl_spinBoxMinute_valueChanged(int))); // clazy:exclude=old-style-connect
    connect(ui->spinBoxMinute, SIGNAL(editingFinished()), this, SLOT(sl_spinBoxMinute_editingFinished())); // clazy:exclude=old-style-connect
    // clang-format on
}

SpecialTimeFrame::~SpecialTimeFrame() = default;

void SpecialTimeFrame::setMinute(int minute)
{
    ui->spinBoxMinute->setValue(minute);
}

void SpecialTimeFrame::setHour(int hour)
{
    ui->spinBoxHour->setValue(hour);
}

int SpecialTimeFrame::minute() const
{
    return ui->spinBoxMinute->value();
}

int SpecialTimeFrame::hour() const
{
    return ui->spinBoxHour->value();
}

QList<QWidget*> SpecialTimeFrame::fields() const
{
    return {ui->spinBoxHour, ui->ArrowHour, ui->spinBoxMinute, ui->ArrowMinute};
}

void SpecialTimeFrame::sl_ArrowHour_valueChanged(int arg1)
{
    step(ui->spinBoxHour, ui->ArrowHour, arg1);
}

void SpecialTimeFrame::sl_spinBoxHour_valueChanged(int arg1)
{
    if (!wrap(ui->spinBoxHour, arg1, 23)) {
        emit sig_changedIndexHour();
    }
}

void SpecialTimeFrame::sl_spinBoxHour_editingFinished()
{
    goOn(ui->spinBoxHour, ui->spinBoxMinute);
}

void SpecialTimeFrame::sl_ArrowMinute_valueChanged(int arg1)
{
    step(ui->spinBoxMinute, ui->ArrowMinute, arg1);
}

void SpecialTimeFrame::sl_spinBoxMinute_valueChanged(int arg1)
{
    if (!wrap(ui->spinBoxMinute, arg1, 59)) {
        emit sig_changedIndexMinute();
    }
}

void SpecialTimeFrame::sl_spinBoxMinute_editingFinished()
{
    goOn(ui->spinBoxMinute, ui->spinBoxHour);
}
