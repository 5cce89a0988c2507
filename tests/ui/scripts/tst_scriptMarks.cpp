#include "model/RelayInfo.h"
#include "ui/scripts/PicturedButton.h"
#include "ui/scripts/ScriptLabel.h"
#include "ui/scripts/ScriptLists.h"

#include <QListWidget>
#include <QtTest>

#include <cmath>
#include <utility>

namespace
{

double linear(double part)
{
    return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color)
{
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

/// How well black can be read on a colour, from 1 to 21.
double contrastOfBlack(const QColor& color)
{
    return (luminance(color) + 0.05) / 0.05;
}

/// A translucent colour in front of another.
QColor over(const QColor& front, const QColor& back)
{
    const auto mix = [&](int frontPart, int backPart) {
        return int(frontPart * front.alphaF() + backPart * (1 - front.alphaF()));
    };
    return {mix(front.red(), back.red()), mix(front.green(), back.green()), mix(front.blue(), back.blue())};
}

/// What a label paints without any colour of its own.
QImage pictureOf(ScriptLabel::Mark mark)
{
    ScriptLabel label;
    label.setText(QStringLiteral("1. Script"));
    label.resize(160, 20);
    label.setMark(mark);
    return label.grab().toImage();
}

} // namespace

/// What tells a script's state and a terminal's fit to those who don't see the colours.
class tst_scriptMarks : public QObject
{
    Q_OBJECT

private slots:
    void eachModeHasAMarkOfItsOwn();
    void marksDifferInShape();
    void aMarkChangesNeitherTextNorHeight();
    void aCrossIsSeenWithoutColours();
    void selectedRowsCanBeRead();
};

void tst_scriptMarks::eachModeHasAMarkOfItsOwn()
{
    const RelayInfo info;
    const ScriptInfoPtr script = info.scripts().constFirst();
    QList<ScriptLabel::Mark> marks = {ScriptLabel::markOf(*script)};
    QCOMPARE(marks.first(), ScriptLabel::Mark::NotActive);
    script->notActive = false;
    const ParamItems modes = info.modes();
    for (const ParamItemPtr& mode : modes) {
        script->mode = mode;
        const ScriptLabel::Mark mark = ScriptLabel::markOf(*script);
        QVERIFY2(mark != ScriptLabel::Mark::None && !marks.contains(mark), qPrintable(mode->name));
        marks.append(mark);
    }
    script->mode.clear();
    QCOMPARE(ScriptLabel::markOf(*script), ScriptLabel::Mark::NotActive);
}

void tst_scriptMarks::marksDifferInShape()
{
    using Mark = ScriptLabel::Mark;
    const Mark marks[] = {Mark::None,      Mark::NotActive,  Mark::Deactivation, Mark::Activation,
                          Mark::SlowPulse, Mark::QuickPulse, Mark::Disabling};
    QList<QImage> pictures;
    for (const Mark mark : marks) {
        const QImage picture = pictureOf(mark);
        QVERIFY(!pictures.contains(picture));
        pictures.append(picture);
    }
}

void tst_scriptMarks::aMarkChangesNeitherTextNorHeight()
{
    ScriptLabel label;
    label.setContentsMargins(3, 3, 3, 3);
    label.setText(QStringLiteral("1. Script"));
    const int height = label.minimumSizeHint().height();
    label.setMark(ScriptLabel::Mark::Activation);
    QCOMPARE(label.text(), QStringLiteral("1. Script"));
    QCOMPARE(label.minimumSizeHint().height(), height);
}

void tst_scriptMarks::aCrossIsSeenWithoutColours()
{
    PicturedButton button(QStringLiteral("5"));
    button.resize(22, 22);
    const QImage plain = button.grab().toImage().convertToFormat(QImage::Format_Grayscale8);
    button.setCrossed(true);
    QVERIFY(button.grab().toImage().convertToFormat(QImage::Format_Grayscale8) != plain);
    button.setCrossed(false);
    QCOMPARE(button.grab().toImage().convertToFormat(QImage::Format_Grayscale8), plain);
}

void tst_scriptMarks::selectedRowsCanBeRead()
{
    const auto info = QSharedPointer<RelayInfo>::create();
    QListWidget all;
    QListWidget active;
    const ScriptLists lists(info, &all, &active);
    const ParamItems modes = info->modes();
    for (const QListWidget* const list : {&all, &active}) {
        for (const auto group : {QPalette::Active, QPalette::Inactive}) {
            const QColor selection = list->palette().color(group, QPalette::Highlight);
            for (const ParamItemPtr& mode : modes) {
                QVERIFY2(contrastOfBlack(over(mode->background, selection)) >= 4.5, qPrintable(mode->name));
                QVERIFY(over(mode->background, selection) != over(mode->background, Qt::white));
            }
        }
    }
}

QTEST_MAIN(tst_scriptMarks)

#include "tst_scriptMarks.moc"
