#include "ui/window/StatusBar.h"

#include "domain/terminals.h"
#include "texts/noValue.h"
#include "texts/texts.h"
#include "widgets/ElidedLabel.h"

#include <QFrame>
#include <QGridLayout>
#include <QIcon>
#include <QLabel>
#include <QResizeEvent>
#include <QStatusBar>
#include <QVBoxLayout>

/// Takes as many lines as its words need, where there is room for them, whatever becomes of its width and its font.
class ResultLabel : public ElidedLabel
{
public:
    using ElidedLabel::ElidedLabel;

    void setRoomForLines(bool on)
    {
        hasRoom = on;
        fitLines();
    }
    void fitLines();

protected:
    void resizeEvent(QResizeEvent* event) override
    {
        ElidedLabel::resizeEvent(event);
        if (event->size().width() != event->oldSize().width()) {
            fitLines();
        }
    }

    void changeEvent(QEvent* event) override
    {
        ElidedLabel::changeEvent(event);
        if (event->type() == QEvent::FontChange) {
            fitLines();
        }
    }

private:
    bool hasRoom = true;
};

namespace
{

constexpr int lampSize = 24; ///< on the screen; leaves room for names of ports such as "ttyUSB10"
constexpr int portWidth = 90;
constexpr int coordinatorWidth = 250;
constexpr int resultWidth = 500;      ///< at least, where the screen has room
constexpr int leastResultWidth = 100; ///< where it hasn't
constexpr int betweenSections = 30;   ///< of all gaps together, with something to spare

template <typename Label = QLabel>
Label* newLabel(const QString& objectName, const QString& text = {})
{
    auto* label = new Label;
    label->setObjectName(objectName);
    label->setText(text);
    label->setTextFormat(Qt::AutoText);
    return label;
}

QFrame* newSection(const QString& objectName)
{
    auto* section = new QFrame;
    section->setObjectName(objectName);
    section->setStyleSheet(QStringLiteral("QFrame{border: 1px solid black;} QLabel{border: 0px;}"));
    return section;
}

template <typename Layout>
Layout* newLayout(QFrame* section)
{
    auto* layout = new Layout(section);
    layout->setContentsMargins(4, 2, 4, 2);
    layout->setSpacing(4);
    return layout;
}

QString bold(const QString& text)
{
    return QStringLiteral("<b>%1</b>").arg(text.toHtmlEscaped());
}

struct Lamp
{
    QString icon;
    QString meaning; ///< what its colour tells, in words
};

Lamp lampOf(uchar state)
{
    switch (state) {
    case StatusBar::LampNotConnected:
        return {QStringLiteral(":/icons/icons/red.png"), texts::spokenPortLost()};
    case StatusBar::LampConnected:
        return {QStringLiteral(":/icons/icons/green.png"), texts::spokenPortWatched()};
    default:
        return {QStringLiteral(":/icons/icons/yellow.png"), texts::spokenPortNotWatched()};
    }
}

void showLamp(QLabel* label, uchar state)
{
    constexpr QSize pictureSize(32, 32);
    const Lamp lamp = lampOf(state);
    // Of an icon there is a larger picture for screens of more pixels, which a bare pixmap doesn't know.
    label->setPixmap(QIcon(lamp.icon).pixmap(pictureSize));
    label->setAccessibleName(lamp.meaning);
    label->setToolTip(lamp.meaning);
}

} // namespace

StatusBar::StatusBar(QStatusBar* bar)
    : labelIconPort(newLabel(QStringLiteral("labelIconPort"))),
      labelBaudrate(newLabel(QStringLiteral("labelBaudrate"), texts::noValue())),
      labelPortName(newLabel<ElidedLabel>(QStringLiteral("labelPortName"), texts::noValue())),
      labelCoordinator(newLabel(QStringLiteral("labelCoordinator"), bold(texts::statusNotConnected()))),
      labelSerial(newLabel(QStringLiteral("labelSerial"), texts::noValue())),
      labelVersion(newLabel(QStringLiteral("labelVersion"), texts::noValue())),
      labelResult(newLabel<ResultLabel>(QStringLiteral("labelResult"))),
      labelDeviceTime(newLabel(QStringLiteral("labelDeviceTime"), texts::noValue())), sectionTime(timeSection()),
      sectionResult(resultSection())
{
    showLamp(labelIconPort, LampNotConnected);
    bar->setSizeGripEnabled(false);
    bar->addWidget(portSection());
    bar->addWidget(coordinatorSection());
    bar->addWidget(sectionTime);
    bar->addWidget(sectionResult, 1);
}

void StatusBar::setRoom(int width)
{
    room = width;
    fitResult();
}

/// The time says more when there is one, and its section grows.
void StatusBar::fitResult()
{
    const int rest = room - portWidth - coordinatorWidth - sectionTime->sizeHint().width() - betweenSections;
    const int width = qBound(leastResultWidth, rest, resultWidth);
    sectionResult->setMinimumWidth(width);
    labelResult->setRoomForLines(width == resultWidth);
}

QFrame* StatusBar::portSection() const
{
    // The picture is larger than the lamp, and the label higher; what is left in between is a square.
    labelIconPort->setMaximumWidth(30);
    labelIconPort->setFixedHeight(30);
    constexpr int aboveLamp = (30 - lampSize) / 2;
    labelIconPort->setContentsMargins(0, aboveLamp, 0, aboveLamp);
    labelIconPort->setScaledContents(true);
    labelIconPort->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    labelPortName->setElideMode(Qt::ElideMiddle);

    QFrame* section = newSection(QStringLiteral("sectionPort"));
    section->setFixedWidth(portWidth);
    auto* layout = newLayout<QGridLayout>(section);
    layout->setContentsMargins(1, 2, 1, 2);
    layout->setSpacing(2);
    layout->setColumnMinimumWidth(0, lampSize);
    layout->addWidget(labelIconPort, 0, 0, 2, 1);
    layout->addWidget(labelPortName, 0, 1);
    layout->addWidget(labelBaudrate, 1, 1);
    layout->setColumnStretch(1, 1);
    return section;
}

QFrame* StatusBar::coordinatorSection() const
{
    labelCoordinator->setFixedWidth(97);
    labelCoordinator->setWordWrap(true);
    labelCoordinator->setAlignment(Qt::AlignCenter);
    labelCoordinator->setStyleSheet(QStringLiteral("QLabel { border-right: 1px solid black; }"));

    QFrame* section = newSection(QStringLiteral("sectionCoordinator"));
    section->setFixedWidth(coordinatorWidth);
    auto* layout = newLayout<QGridLayout>(section);
    layout->addWidget(labelCoordinator, 0, 0, 2, 1);
    layout->addWidget(new QLabel(texts::statusVersion()), 0, 1);
    layout->addWidget(labelVersion, 0, 2);
    layout->addWidget(new QLabel(texts::statusSerialNumber()), 1, 1);
    layout->addWidget(labelSerial, 1, 2);
    layout->setColumnStretch(2, 1);
    return section;
}

QFrame* StatusBar::timeSection() const
{
    QFrame* section = newSection(QStringLiteral("sectionTime"));
    auto* layout = newLayout<QVBoxLayout>(section);
    layout->addWidget(new QLabel(texts::statusDeviceTime()));
    layout->addWidget(labelDeviceTime);
    return section;
}

QFrame* StatusBar::resultSection() const
{
    labelResult->setWordWrap(true);
    // Results name files, and a file's name is no markup.
    labelResult->setTextFormat(Qt::PlainText);
    labelResult->setElideMode(Qt::ElideMiddle);

    QFrame* section = newSection(QStringLiteral("sectionResult"));
    section->setMinimumWidth(resultWidth);
    newLayout<QVBoxLayout>(section)->addWidget(labelResult);
    return section;
}

void StatusBar::showPort(uchar lamp, const QString& portName, const QString& baudrate, uchar address,
                         const QString& serial, const QString& version)
{
    showLamp(labelIconPort, lamp);
    QFont font = labelPortName->font();
    font.setBold(true);
    labelPortName->setFont(font); // the label measures by its font, not by the text's format
    labelPortName->setText(bold(portName));
    labelBaudrate->setText(bold(baudrate));
    labelSerial->setText(bold(serial));
    labelVersion->setText(bold(version));
    labelCoordinator->setText(address == noCoordinator
                                  ? bold(texts::statusNotConnected())
                                  : texts::statusCoordinator() + QStringLiteral(" <b>%1</b>").arg(address));
}

void StatusBar::showDeviceTime(const QString& time)
{
    labelDeviceTime->setText(time);
    fitResult();
}

void StatusBar::showResult(const QString& result)
{
    labelResult->setText(result);
    labelResult->fitLines();
}

/// A result of many words gets more lines than the other sections have, where the screen has room for it.
void ResultLabel::fitLines()
{
    constexpr int mostLines = 4;
    const QFontMetrics metrics = fontMetrics();
    const int room = qMax(width(), leastResultWidth);
    const int whole = metrics.boundingRect(0, 0, room, QWIDGETSIZE_MAX, Qt::TextWordWrap, text()).height();
    setMinimumHeight(hasRoom ? qMin(whole, mostLines * metrics.lineSpacing()) : 0);
}

QString StatusBar::result() const
{
    return labelResult->text();
}
