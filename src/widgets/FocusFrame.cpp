#include "widgets/FocusFrame.h"

#include <QApplication>
#include <QEvent>
#include <QFileDialog>
#include <QPainter>
#include <QRegion>
#include <QSplitter>
#include <QWidget>

namespace
{

class Line : public QWidget
{
public:
    explicit Line(QWidget* parent) : QWidget(parent)
    {
        setObjectName(QStringLiteral("focusFrame"));
        setFocusPolicy(Qt::NoFocus);
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        // Dark enough to stand out from the grey of windows, the white of fields and the green, yellow and red of rows.
        QPainter(this).fillRect(rect(), QColor(0, 72, 186));
    }
};

/// A splitter takes each child for a pane of its own, and the windows that Qt brings show their focus themselves.
bool canBeFramed(const QWidget* control)
{
    return control != nullptr && control->parentWidget() != nullptr && !control->isWindow() &&
           qobject_cast<QSplitter*>(control->parentWidget()) == nullptr &&
           qobject_cast<QFileDialog*>(control->window()) == nullptr;
}

} // namespace

FocusFrame::FocusFrame(QObject* parent) : QObject(parent)
{
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { follow(now); });
}

FocusFrame::~FocusFrame()
{
    delete frame;
}

void FocusFrame::follow(QWidget* now)
{
    if (framed) {
        framed->removeEventFilter(this);
    }
    const bool byMouse = QGuiApplication::mouseButtons() != Qt::NoButton;
    if (byMouse && now != nullptr) {
        now->window()->setAttribute(Qt::WA_KeyboardFocusChange, false); // until the next Tab
    }
    const bool shown = canBeFramed(now) && !byMouse && now->window()->testAttribute(Qt::WA_KeyboardFocusChange);
    framed = shown ? now : nullptr;
    if (framed) {
        framed->installEventFilter(this);
    }
    fit();
}

void FocusFrame::fit()
{
    if (!framed || !framed->isVisible()) {
        if (frame) {
            frame->hide();
        }
        return;
    }
    QWidget* const parent = framed->parentWidget();
    if (!frame) {
        frame = new Line(parent);
    } else if (frame->parentWidget() != parent) {
        frame->setParent(parent);
    }
    frame->setGeometry(framed->geometry().adjusted(-width, -width, width, width) & parent->rect());
    const QRect whole = frame->rect();
    frame->setMask(QRegion(whole) - QRegion(whole.adjusted(width, width, -width, -width)));
    frame->raise();
    frame->show();
}

bool FocusFrame::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::Show:
    case QEvent::Hide:
    case QEvent::ParentChange:
        fit();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}
