#include "ui/scripts/PeriodsSection.h"

#include "texts/texts.h"
#include "ui/pickers/SpecialDateFrame.h"
#include "ui/pickers/SpecialTimeFrame.h"
#include "ui_Setting_Script_Widget.h"
#include "widgets/Spoken.h"

#include <initializer_list>

namespace
{

template <typename Frame>
Frame* addTo(QFrame* place, Frame* frame)
{
    auto* layout = new QHBoxLayout(place);
    layout->setContentsMargins({});
    layout->addWidget(frame);
    return frame;
}

/// Names the fields of a picker by what begins or ends there; its arrows are called as their fields are.
void nameParts(const QList<QWidget*>& fields, const QLabel* caption, std::initializer_list<QString> names)
{
    int i = 0;
    for (const QString& name : names) {
        spoken::call(fields.at(i++), name.arg(spoken::name(caption->text())));
    }
}

/// Shows as much of a date as the picker can; the month first, since it decides which days there are.
void showDate(SpecialDateFrame* frame, int day, int month)
{
    frame->setMonth(qBound(1, month, 12));
    frame->setDay(qBound(1, day, frame->lastDay()));
}

void showTime(SpecialTimeFrame* frame, int minute, int hour)
{
    frame->setMinute(qBound(0, minute, 59));
    frame->setHour(qBound(0, hour, 23));
}

} // namespace

PeriodsSection::PeriodsSection(const Ui::Setting_Script_Widget& form, QObject* parent)
    : ScriptSection(form, parent), dayBoxes{form.checkBoxMon, form.checkBoxTue, form.checkBoxWed, form.checkBoxThu,
                                            form.checkBoxFri, form.checkBoxSat, form.checkBoxSun},
      timeBegin(addTo(form.F_TimeBegin, new SpecialTimeFrame)), timeEnd(addTo(form.F_TimeEnd, new SpecialTimeFrame)),
      dateBegin(addTo(form.F_DateBegin, new SpecialDateFrame(nullptr, true))),
      dateEnd(addTo(form.F_DateEnd, new SpecialDateFrame(nullptr, true)))
{
    setHeading(ui.titleFilterDateTime);
    setTexts({{ui.titleFilterDateTime, texts::editorFilterByDateAndTime()},
              {ui.titleFilterDays, texts::editorFilterByDays()},
              {ui.checkBoxMon, texts::dayMonday()},
              {ui.checkBoxTue, texts::dayTuesday()},
              {ui.checkBoxWed, texts::dayWednesday()},
              {ui.checkBoxThu, texts::dayThursday()},
              {ui.checkBoxFri, texts::dayFriday()},
              {ui.checkBoxSat, texts::daySaturday()},
              {ui.checkBoxSun, texts::daySunday()},
              {ui.titleStart, texts::editorStart()},
              {ui.titleEnd, texts::editorEnd()},
              {ui.checkBoxTime, texts::editorFilterByTime()},
              {ui.checkBoxDate, texts::editorFilterByDate()}});
    const QList<QWidget*> stops = QList<QWidget*>{ui.checkBoxTime} + timeBegin->fields() + timeEnd->fields() +
                                  QList<QWidget*>{ui.checkBoxDate} + dateBegin->fields() + dateEnd->fields();
    for (int i = 1; i < stops.size(); ++i) {
        QWidget::setTabOrder(stops.at(i - 1), stops.at(i));
    }
    nameFields();
    timeSwitched();
    dateSwitched();
}

void PeriodsSection::nameFields()
{
    const QString hour = texts::spokenHour();
    const QString minute = texts::spokenMinute();
    nameParts(timeBegin->fields(), ui.titleStart, {hour, hour, minute, minute});
    nameParts(timeEnd->fields(), ui.titleEnd, {hour, hour, minute, minute});
    const QString day = texts::spokenDay();
    nameParts(dateBegin->fields(), ui.titleStart, {day, day, texts::spokenMonth()});
    nameParts(dateEnd->fields(), ui.titleEnd, {day, day, texts::spokenMonth()});
}

void PeriodsSection::showScript()
{
    for (int day = 0; day < dayBoxes.size(); ++day) {
        dayBoxes.at(day)->setChecked(script->daysOfWeek.value(day));
    }
    showSwitch(ui.checkBoxTime, ScriptInfo::ByTime);
    timeSwitched();
    showSwitch(ui.checkBoxDate, ScriptInfo::ByDate);
    dateSwitched();
    showTime(timeBegin, script->timeFilter.value(0), script->timeFilter.value(1));
    showTime(timeEnd, script->timeFilter.value(2), script->timeFilter.value(3));
    showDate(dateBegin, script->dateFilter.value(0), script->dateFilter.value(1));
    showDate(dateEnd, script->dateFilter.value(2), script->dateFilter.value(3));
}

void PeriodsSection::dayClicked(QObject* box)
{
    const int day = dayBoxes.indexOf(qobject_cast<QCheckBox*>(box));
    if (editing() && day >= 0) {
        script->daysOfWeek[day] = dayBoxes.at(day)->isChecked();
    }
}

void PeriodsSection::timeSwitched()
{
    switchFilter(ui.checkBoxTime, ScriptInfo::ByTime, {ui.F_TimeBegin, ui.F_TimeEnd});
}

void PeriodsSection::dateSwitched()
{
    switchFilter(ui.checkBoxDate, ScriptInfo::ByDate, {ui.F_DateBegin, ui.F_DateEnd});
}

void PeriodsSection::minuteChanged(QObject* frame)
{
    const int period = times().indexOf(qobject_cast<SpecialTimeFrame*>(frame));
    if (editing() && period >= 0) {
        script->timeFilter[2 * period] = times().at(period)->minute();
    }
}

void PeriodsSection::hourChanged(QObject* frame)
{
    const int period = times().indexOf(qobject_cast<SpecialTimeFrame*>(frame));
    if (editing() && period >= 0) {
        script->timeFilter[2 * period + 1] = times().at(period)->hour();
    }
}

void PeriodsSection::dayChanged(QObject* frame)
{
    const int period = dates().indexOf(qobject_cast<SpecialDateFrame*>(frame));
    if (editing() && period >= 0) {
        script->dateFilter[2 * period] = dates().at(period)->day();
    }
}

/// Stores the day as well: where the record held one that its month doesn't have, the user has chosen the month for the
/// day on the screen.
void PeriodsSection::monthChanged(QObject* frame)
{
    const int period = dates().indexOf(qobject_cast<SpecialDateFrame*>(frame));
    if (editing() && period >= 0) {
        dayChanged(frame);
        script->dateFilter[2 * period + 1] = dates().at(period)->month();
    }
}
