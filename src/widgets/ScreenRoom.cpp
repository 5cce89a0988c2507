#include "widgets/ScreenRoom.h"

#include <QCursor>
#include <QElapsedTimer>
#include <QEvent>
#include <QGuiApplication>
#include <QLayout>
#include <QScreen>
#include <QStyle>
#include <QTimer>
#include <QWidget>
#include <QWindow>
#include <QWindowStateChangeEvent>

#include <optional>

namespace
{

constexpr QMargins thickFrame(6, 36, 6, 6);
constexpr Qt::WindowStates filling = Qt::WindowMaximized | Qt::WindowFullScreen;

QMargins frameOf(const QWidget* window)
{
    const QRect inner = window->geometry();
    const QRect outer = window->frameGeometry();
    if (inner == outer) {
        return thickFrame;
    }
    return {inner.left() - outer.left(), inner.top() - outer.top(), outer.right() - inner.right(),
            outer.bottom() - inner.bottom()};
}

/// Of the size, moved and cut as little as it takes to lie in the room.
QRect within(QRect rect, const QRect& room)
{
    rect.setSize(rect.size().boundedTo(room.size()));
    rect.moveRight(qMin(rect.right(), room.right()));
    rect.moveBottom(qMin(rect.bottom(), room.bottom()));
    rect.moveLeft(qMax(rect.left(), room.left()));
    rect.moveTop(qMax(rect.top(), room.top()));
    return rect;
}

/// Whether a window has a place of its own on the screen.
bool isNormal(const QWidget* window)
{
    return (window->windowState() & (filling | Qt::WindowMinimized)) == 0;
}

class Keeper : public QObject
{
public:
    explicit Keeper(QWidget* keptWindow) : QObject(keptWindow), window(keptWindow)
    {
        window->installEventFilter(this);
        // Until the window is shown, its layout may ask for more than it will want in the end, and have it grow.
        if (window->minimumSize() != window->maximumSize()) {
            window->setMinimumSize(1, 1);
        }
    }

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void begin();
    void beginToSettle(const QSize& passingSize);
    void settle();
    void follow(const QScreen* screen);
    void fitAnew(const QRect& nowAvailable);
    bool isHeldByItsTitle() const;
    void leaveLeastSizeToLayout();
    void fitSizes();
    void fit();

    QWidget* window;
    std::optional<QSize> fixedSize; ///< that was set for the window
    bool isBegun = false;
    bool isSqueezed = false; ///< its layout has less room than it wants
    int settlings = 0;       ///< how often its manager may still be about to place it
    QElapsedTimer sinceChange;
    QSize sizeBefore;        ///< in the state that it leaves, which it may keep for a moment
    bool isRestored = false; ///< it was maximised before, and the user may be dragging it from there
    QRect available;         ///< of the screen
    QMetaObject::Connection roomChanged;
};

bool Keeper::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Show:
        if (!event->spontaneous() && window->windowHandle() != nullptr) {
            begin();
            fit();
            isRestored = false;
            beginToSettle(QSize());
        }
        break;
    case QEvent::WindowStateChange:
        if ((static_cast<QWindowStateChangeEvent*>(event)->oldState() & filling) != 0) {
            isRestored = true;
            beginToSettle(window->size());
        }
        break;
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::WindowActivate:
        settle();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

/// At the first showing, when the window has got its sizes.
void Keeper::begin()
{
    if (isBegun) {
        return;
    }
    isBegun = true;
    if (window->minimumSize() == window->maximumSize()) {
        fixedSize = window->minimumSize();
    } else if (window->layout() != nullptr) {
        leaveLeastSizeToLayout();
    }
    follow(window->screen());
    connect(window->windowHandle(), &QWindow::screenChanged, this, [this](const QScreen* screen) {
        follow(screen);
        fitSizes(); // and not its place: a user is dragging it there
    });
}

void Keeper::follow(const QScreen* screen)
{
    disconnect(roomChanged);
    available = screen->availableGeometry();
    roomChanged = connect(screen, &QScreen::availableGeometryChanged, this, &Keeper::fitAnew);
}

/// Of a window that the user has put partly outside, nothing more than that may get out of sight.
void Keeper::fitAnew(const QRect& nowAvailable)
{
    const QRect seenBefore = window->frameGeometry() & available;
    const QSize oldSize = window->size();
    available = nowAvailable;
    fitSizes();
    if (!available.contains(seenBefore) || window->size() != oldSize) {
        fit();
    }
}

void Keeper::beginToSettle(const QSize& passingSize)
{
    constexpr int mostSettlings = 8;
    sizeBefore = passingSize;
    settlings = mostSettlings;
    sinceChange.start();
    // The manager may hold to a size that the window had asked for before, and tell of it when all settlings are spent.
    for (const int delay : {700, 2000}) {
        QTimer::singleShot(delay, this, [this] {
            if (!isHeldByItsTitle()) {
                settlings = qMax(settlings, 1);
                settle();
            }
        });
    }
}

/// Whether the title is in sight and the mouse is about there: then the user may be dragging the window, and whoever
/// isn't can reach it all the same.
bool Keeper::isHeldByItsTitle() const
{
    constexpr int reach = 50; // a dragged window may lag behind the mouse
    const QRect outer = window->frameGeometry();
    const QRect title(outer.topLeft(), window->geometry().topRight());
    return outer.top() >= available.top() && title.adjusted(-reach, -reach, reach, reach).contains(QCursor::pos());
}

/// The frame that a manager gives a window isn't known before the window is on the screen.
void Keeper::settle()
{
    constexpr int longest = 3000; // after that it is the user who moves the window
    if (settlings > 0 && !sinceChange.hasExpired(longest) && window->isVisible() && isNormal(window) &&
        window->size() != sizeBefore) {
        --settlings;
        if (isRestored && isHeldByItsTitle()) {
            fitSizes();
            window->resize(window->size().boundedTo(screenRoom::forContents(window).size()));
        } else {
            fit();
        }
    }
}

void Keeper::leaveLeastSizeToLayout()
{
    window->setMinimumSize(0, 0);
    window->layout()->invalidate();
    window->layout()->activate();
}

void Keeper::fitSizes()
{
    const QRect room = screenRoom::forContents(window);
    if (fixedSize) {
        window->setFixedSize(fixedSize->boundedTo(room.size()));
    } else {
        const QSize least = window->layout() != nullptr ? window->layout()->totalMinimumSize() : QSize();
        const QSize possible = least.boundedTo(room.size());
        if (possible != least) {
            window->setMinimumSize(possible);
        } else if (isSqueezed) {
            leaveLeastSizeToLayout();
        }
        isSqueezed = possible != least;
    }
}

void Keeper::fit()
{
    fitSizes();
    const QRect room = screenRoom::forContents(window);
    if (isNormal(window) && !room.contains(window->geometry())) {
        window->setGeometry(within(window->geometry(), room));
    }
}

} // namespace

namespace screenRoom
{

QRect forContents(const QWidget* window)
{
    const QString platform = QGuiApplication::platformName();
    if (platform == QLatin1String("offscreen") || platform == QLatin1String("minimal")) {
        return {QPoint(-QWIDGETSIZE_MAX, -QWIDGETSIZE_MAX), QPoint(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX)};
    }
    return window->screen()->availableGeometry().marginsRemoved(frameOf(window));
}

void centre(QWidget* window, const QSize& size, const QRect& place)
{
    const QRect wanted = QStyle::alignedRect(Qt::LeftToRight, Qt::AlignCenter, size, place);
    window->setGeometry(within(wanted, forContents(window)));
}

void keep(QWidget* window)
{
    new Keeper(window);
}

} // namespace screenRoom
