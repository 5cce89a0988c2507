#include "link/FormWaiting.h"

#include "texts/texts.h"
#include "ui_FormWaiting.h"
#include "widgets/Look.h"
#include "widgets/ScreenRoom.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QProgressBar>
#include <QScreen>
#include <QTimer>

#include <chrono>

namespace
{

// The bar is painted at most that often; between, right behind the step, while the unit is at the next request.
constexpr std::chrono::milliseconds paintInterval{20};
constexpr std::chrono::milliseconds behindTheStep{1};

} // namespace

FormWaiting::FormWaiting(QWidget* parent)
    // Without the first hint X11 would have all buttons on the frame, those to minimise and to close it among them.
    : Form(parent, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::MSWindowsFixedSizeDialogHint),
      ui(std::make_unique<Ui::FormWaiting>()), timerPaint(new QTimer(this))
{
    setFont(look::applicationFont());
    ui->setupUi(this);
    setWindowTitle(texts::busyTitle());
    ui->progressBar->setAccessibleName(texts::busyTitle());
    setWindowModality(Qt::ApplicationModal);
    // It is no window whose being open keeps the application alive.
    setAttribute(Qt::WA_QuitOnClose, false);
    timerPaint->setSingleShot(true);
    timerPaint->setTimerType(Qt::PreciseTimer);
    connect(timerPaint, &QTimer::timeout, this, &FormWaiting::paintProgress);
    sincePaint.start();
}

FormWaiting::~FormWaiting() = default;

void FormWaiting::setOperation(const QString& text, int minimum, int maximum)
{
    ui->label->setText(text);
    ui->progressBar->setRange(minimum, maximum);
    ui->progressBar->setValue(0);
}

void FormWaiting::setProgressMaximum(int maximum)
{
    ui->progressBar->setMaximum(maximum);
}

void FormWaiting::setOperationText(const QString& text)
{
    ui->label->setText(text);
}

void FormWaiting::stepProgress()
{
    QProgressBar* const bar = ui->progressBar;
    if (bar->value() == bar->maximum()) {
        return;
    }
    // A bar paints each new value before setValue() returns, unless its updates are off. They are switched by the
    // attribute, since setUpdatesEnabled() asks for a painting of its own.
    bar->setAttribute(Qt::WA_UpdatesDisabled);
    bar->setValue(bar->value() + 1);
    bar->setAttribute(Qt::WA_UpdatesDisabled, false);
    timerPaint->start(sincePaint.hasExpired(paintInterval.count()) ? behindTheStep : paintInterval);
}

void FormWaiting::paintProgress()
{
    sincePaint.start();
    ui->progressBar->update();
}

void FormWaiting::showEvent(QShowEvent* event)
{
    // In the middle of the screen where the window below is; that itself may not have found its place yet.
    if (!event->spontaneous()) {
        const QScreen* const place =
            parentWidget() != nullptr ? parentWidget()->window()->screen() : QGuiApplication::primaryScreen();
        screenRoom::centre(this, size(), place->availableGeometry());
    }
    Form::showEvent(event);
}

void FormWaiting::closeEvent(QCloseEvent* event)
{
    // While there is a window to keep the user away from, nobody closes this one. Once that has gone the application is
    // about to end; it asks every form to close before, and would stay if one refused.
    const bool belowIsGone = parentWidget() != nullptr && !parentWidget()->window()->isVisible();
    event->setAccepted(belowIsGone);
}
