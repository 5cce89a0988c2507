#include "widgets/Look.h"

#include "widgets/SheetAlone.h"

#include <QColor>
#include <QComboBox>
#include <QCoreApplication>
#include <QDockWidget>
#include <QEvent>
#include <QGuiApplication>
#include <QPalette>
#include <QVector>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace
{

/// As the guidelines for accessible content reckon it: from 0 to 1.
double luminance(const QColor& color)
{
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor& one, const QColor& other)
{
    const double first = luminance(one) + 0.05;
    const double second = luminance(other) + 0.05;
    return qMax(first, second) / qMin(first, second);
}

} // namespace

namespace look
{

QFont applicationFont()
{
    return {QStringLiteral("MS Shell Dlg 2"), 8};
}

QString rgba(const QColor& color)
{
    return QStringLiteral("rgba(%1, %2, %3, %4)")
        .arg(color.red())
        .arg(color.green())
        .arg(color.blue())
        .arg(color.alpha());
}

QString comboProperties(const QComboBox* combo, int row)
{
    return QStringLiteral("combobox-popup: 0; selection-color: black; selection-background-color: rgba(0,0,0,20);"
                          "background-color: %1;")
        .arg(row < 0 ? QStringLiteral("red") : rgba(combo->itemData(row, Qt::BackgroundRole).value<QColor>()));
}

QString titleStyle(const QString& background)
{
    return QStringLiteral("text-align: center; background: %1; padding-top: 5px; padding-bottom: 5px;").arg(background);
}

void setDockTitle(QDockWidget* dock, const QString& background)
{
    const QString sheet = QStringLiteral("QDockWidget::title { %1}").arg(titleStyle(background));
    if (dock->styleSheet().isEmpty() || dock->widget() == nullptr) {
        applyStyleSheet(dock, sheet);
    } else if (dock->styleSheet() != sheet) {
        sheetAlone::set(dock, sheet);
        dock->update(0, 0, dock->width(), dock->widget()->y());
    }
}

QString richText(const QString& text)
{
    constexpr int longestWord = 40;
    constexpr QChar breakHere(0x200B); // of no width
    QString broken;
    int wordLength = 0;
    for (const QChar character : text) {
        wordLength = character.isSpace() ? 0 : wordLength + 1;
        if (wordLength > longestWord && !character.isLowSurrogate()) {
            broken += breakHere;
            wordLength = 1;
        }
        broken += character;
    }
    return broken.toHtmlEscaped();
}

QColor fadedText(const QPalette& colors)
{
    const QColor& text = colors.color(QPalette::Active, QPalette::WindowText);
    const QColor& window = colors.color(QPalette::Active, QPalette::Window);
    const auto mixed = [](int one, int other, int percent) { return (one * percent + other * (100 - percent)) / 100; };
    constexpr int faintest = 65; // per cent of the text's colour
    constexpr double leastContrast = 4.5;
    for (int percent = faintest; percent < 100; percent += 5) {
        const QColor faded(mixed(text.red(), window.red(), percent), mixed(text.green(), window.green(), percent),
                           mixed(text.blue(), window.blue(), percent));
        if (contrast(faded, window) >= leastContrast) {
            return faded;
        }
    }
    return text;
}

QPalette knownPalette(const QPalette& palette)
{
    constexpr int enough = 64; // those of all rows of all lists, enabled and disabled
    static QVector<QPalette> known;
    static qreal ratio = 0;
    if (ratio != qApp->devicePixelRatio()) { // the pictures kept are too coarse or too fine now
        ratio = qApp->devicePixelRatio();
        known.clear();
    }
    const auto equal = std::find(known.cbegin(), known.cend(), palette);
    if (equal != known.cend()) {
        QPalette same = *equal;
        same.setCurrentColorGroup(palette.currentColorGroup()); // which equality leaves out
        return same;
    }
    if (known.size() == enough) {
        known.removeFirst();
    }
    known.append(palette);
    return palette;
}

void applyStyleSheet(QWidget* widget, const QString& styleSheet)
{
    if (widget->styleSheet() != styleSheet) {
        widget->setStyleSheet(styleSheet);
    }
}

void settleLayouts()
{
    // Each round takes the requests that were there when it began: those of one level of the nested layouts.
    constexpr int levels = 8;
    for (int level = 0; level < levels; ++level) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    }
}

} // namespace look
