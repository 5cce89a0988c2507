#pragma once

#include "ui/scripts/ScriptSection.h"

class SpecialDateFrame;
class SpecialTimeFrame;

/// The filters by days of the week, by a period of the day and by a period of the year.
///
/// A number that its picker can't show stays in the record until the user edits that very number; a day also until the
/// user chooses a month for the day that stands there instead.
class PeriodsSection : public ScriptSection
{
    Q_OBJECT

public:
    PeriodsSection(const Ui::Setting_Script_Widget& form, QObject* parent);

    const QList<QCheckBox*>& days() const ///< Monday to Sunday
    {
        return dayBoxes;
    }
    QList<SpecialTimeFrame*> times() const
    {
        return {timeBegin, timeEnd};
    }
    QList<SpecialDateFrame*> dates() const
    {
        return {dateBegin, dateEnd};
    }

    void dayClicked(QObject* box);
    void timeSwitched();
    void dateSwitched();
    void minuteChanged(QObject* frame);
    void hourChanged(QObject* frame);
    void dayChanged(QObject* frame);
    void monthChanged(QObject* frame);

protected:
    void showScript() override;

private:
    void nameFields();

    const QList<QCheckBox*> dayBoxes;
    SpecialTimeFrame* const timeBegin;
    SpecialTimeFrame* const timeEnd;
    SpecialDateFrame* const dateBegin;
    SpecialDateFrame* const dateEnd;
};
