#pragma once

#include <QFrame>
#include <QList>

#include <memory>

namespace Ui
{
class SpecialTimeFrame;
}

/// A picker of a time of day: hour and minute, each wrapping round by itself without carrying into the other.
///
/// It is built like SpecialDateFrame: narrow arrow boxes that spring back to 0 beside fields whose range is one wider
/// at both ends. Enter goes from one field to the other. GUI thread only; its parent owns it.
class SpecialTimeFrame : public QFrame
{
    Q_OBJECT

public:
    explicit SpecialTimeFrame(QWidget* parent = nullptr);
    ~SpecialTimeFrame() override;
    Q_DISABLE_COPY_MOVE(SpecialTimeFrame)

    void setMinute(int minute);
    void setHour(int hour);
    int minute() const;
    int hour() const;

    /// All parts in tab order. The arrows hand the focus on to their field; Tab passes them over as long as they come
    /// right behind it.
    QList<QWidget*> fields() const;

signals:
    void sig_changedIndexMinute(); ///< once for each new minute, whether the user or a call chose it
    void sig_changedIndexHour();   ///< likewise for the hour

public slots:
    void sl_ArrowHour_valueChanged(int arg1);
    void sl_spinBoxHour_valueChanged(int arg1);
    void sl_spinBoxHour_editingFinished();
    void sl_ArrowMinute_valueChanged(int arg1);
    void sl_spinBoxMinute_valueChanged(int arg1);
    void sl_spinBoxMinute_editingFinished();

private:
    std::unique_ptr<Ui::SpecialTimeFrame> ui;
};
