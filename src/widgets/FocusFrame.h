#pragma once

#include <QObject>
#include <QPointer>

class QWidget;

/// A clear frame around the control that has the focus, whatever its style sheet makes of it.
///
/// One for the program, on the GUI thread; it follows the application's focus by itself. The frame is a widget of the
/// control's own parent, so that it is scrolled and cut off as the control is; it lies beside the control where there
/// is room, takes no mouse, and covers nothing but its own thin line. A control that was clicked has none, and a window
/// in which nobody has pressed Tab yet, or a key that leads to a control, shows none: who works by the mouse sees it as
/// it always was.
class FocusFrame : public QObject
{
    Q_OBJECT

public:
    explicit FocusFrame(QObject* parent = nullptr);
    ~FocusFrame() override;
    Q_DISABLE_COPY_MOVE(FocusFrame)

    static constexpr int width = 2; ///< of the line, in pixels

    /// Keeps the frame at its control.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void follow(QWidget* now);
    void fit();

    QPointer<QWidget> framed;
    QPointer<QWidget> frame; ///< goes with whichever parent it has
};
