#pragma once

#include <QFrame>
#include <QList>

#include <memory>

class QComboBox;

namespace Ui
{
class SpecialDateFrame;
}

/// A picker of a day of the year: day and month, no year, so February has 29 days.
///
/// The day wraps round at both ends of the month shown. The arrows are a narrow spin box beside the field that springs
/// back to 0 after each step, and the field's own range is wider than any month at both ends, so that a step beyond
/// an end can be seen. Days and months count from 1. GUI thread only; its parent owns it.
class SpecialDateFrame : public QFrame
{
    Q_OBJECT

public:
    /// Month names are English, or Russian in the genitive.
    explicit SpecialDateFrame(QWidget* parent = nullptr, bool englishMonths = false);
    ~SpecialDateFrame() override;
    Q_DISABLE_COPY_MOVE(SpecialDateFrame)

    void setDay(int day);
    void setMonth(int month);
    int day() const;
    int month() const;

    /// The last day of the month shown.
    int lastDay() const
    {
        return maxDay;
    }

    /// All parts in tab order. The arrows hand the focus on to their field; Tab passes them over as long as they come
    /// right behind it.
    QList<QWidget*> fields() const;

signals:
    void sig_changedValueDay();   ///< once for each new day, whether the user or a call chose it
    void sig_changedValueMonth(); ///< likewise; a day that the new month lacks has been replaced and reported before

public slots:
    void sl_ArrowDay_valueChanged(int arg);
    void sl_spinBoxDay_valueChanged(int arg);
    void sl_comboMonth_currentIndexChanged(int arg);

private:
    std::unique_ptr<Ui::SpecialDateFrame> ui;
    QComboBox* comboMonth;
    int maxDay = 31;
};
