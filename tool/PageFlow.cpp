#include "tool/PageFlow.h"

#include <QPainter>
#include <QTextOption>

#include <numeric>

namespace
{

constexpr qreal thinRule = 0.002; ///< of the width of the page
constexpr qreal strongRule = 0.0035;

/// A paragraph broken into lines.
std::shared_ptr<QTextLayout> layOut(const FlowText& text, qreal width, QPaintDevice* device)
{
    auto layout = std::make_shared<QTextLayout>(text.text, text.font, device);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setTextDirection(Qt::LeftToRight);
    layout->setTextOption(option);
    layout->setCacheEnabled(true);
    layout->beginLayout();
    for (QTextLine line = layout->createLine(); line.isValid(); line = layout->createLine()) {
        line.setLineWidth(width);
        line.setPosition(QPointF());
    }
    layout->endLayout();
    return layout;
}

} // namespace

PageFlow::PageFlow(QPaintDevice& device, qreal pageWidth, qreal pageHeight)
    : paintDevice(device), width(pageWidth), height(pageHeight)
{
}

int PageFlow::append(const FlowStrip& strip)
{
    LaidOut laidOut;
    laidOut.strip = strip;
    for (const FlowStrip::Column& column : strip.columns) {
        const QVector<Line> lines = linesOf(column);
        laidOut.lineCount = qMax(laidOut.lineCount, lines.size());
        laidOut.columns.append(lines);
    }
    strips.push_back(laidOut);
    return int(strips.size()) - 1;
}

QVector<PageFlow::Line> PageFlow::linesOf(const FlowStrip::Column& column) const
{
    QVector<Line> lines;
    for (const FlowText& text : column.paragraphs) {
        const auto layout = layOut(text, column.width, &paintDevice);
        for (int number = 0; number < layout->lineCount(); ++number) {
            lines.append({layout, number, column.left, text.color});
        }
    }
    return lines;
}

int PageFlow::breakIntoPages()
{
    pages.clear();
    beginPage();
    for (int strip = 0; strip < int(strips.size()); ++strip) {
        place(strip);
    }
    return pages.size();
}

qreal PageFlow::heightOf(int strip) const
{
    const LaidOut& laidOut = strips.at(size_t(strip));
    return laidOut.lineCount * laidOut.strip.lineHeight + 2 * laidOut.strip.padding;
}

/// What has to fit below the strip in front of it: all of it, or some lines of what fits on no page.
qreal PageFlow::leastHeightOf(int strip) const
{
    constexpr int fewLines = 4;
    const FlowStrip& settings = strips.at(size_t(strip)).strip;
    const qreal whole = heightOf(strip);
    return whole <= height ? whole : fewLines * settings.lineHeight + 2 * settings.padding;
}

/// With all that may not be parted from it, or, if that fits on no page, with the strip behind it.
qreal PageFlow::heightWithFollowers(int strip) const
{
    qreal sum = leastHeightOf(strip);
    qreal withNext = sum;
    for (int next = strip + 1; next < int(strips.size()) && strips.at(size_t(next - 1)).strip.keepsNext; ++next) {
        sum += strips.at(size_t(next)).strip.spaceAbove + leastHeightOf(next);
        withNext = next == strip + 1 ? sum : withNext;
    }
    return sum <= height ? sum : withNext;
}

void PageFlow::beginPage()
{
    pages.append(QVector<Part>());
    y = 0;
}

/// Headers that would take most of the page aren't worth it.
void PageFlow::repeatHeaders(const QVector<int>& headers)
{
    const qreal sum = std::accumulate(headers.cbegin(), headers.cend(), qreal(0),
                                      [this](qreal before, int strip) { return before + heightOf(strip); });
    if (sum > height / 2) {
        return;
    }
    for (const int strip : headers) {
        placePart(strip, 0, strips.at(size_t(strip)).lineCount);
    }
}

void PageFlow::place(int strip)
{
    const FlowStrip& settings = strips.at(size_t(strip)).strip;
    const bool isFirst = pages.last().isEmpty();
    const qreal space = isFirst ? 0 : settings.spaceAbove;
    if (!isFirst && y + space + heightWithFollowers(strip) > height) {
        beginPage();
        repeatHeaders(settings.headers);
    } else {
        y += space;
    }
    int firstLine = 0;
    const int lineCount = strips.at(size_t(strip)).lineCount;
    while (firstLine < lineCount) {
        const int room = int((height - y - 2 * settings.padding) / settings.lineHeight + 0.001);
        const int count = qBound(1, room, lineCount - firstLine);
        placePart(strip, firstLine, count);
        firstLine += count;
        if (firstLine < lineCount) {
            beginPage();
            repeatHeaders(settings.headers);
        }
    }
}

void PageFlow::placePart(int strip, int firstLine, int lineCount)
{
    const FlowStrip& settings = strips.at(size_t(strip)).strip;
    pages.last().append({strip, firstLine, lineCount, y});
    y += lineCount * settings.lineHeight + 2 * settings.padding;
}

void PageFlow::paint(QPainter& painter, int page) const
{
    for (const Part& part : pages.at(page)) {
        paintPart(painter, part);
    }
}

void PageFlow::paintPart(QPainter& painter, const Part& part) const
{
    const LaidOut& laidOut = strips.at(size_t(part.strip));
    const FlowStrip& settings = laidOut.strip;
    for (const QVector<Line>& lines : laidOut.columns) {
        const int end = qMin(part.firstLine + part.lineCount, lines.size());
        for (int i = part.firstLine; i < end; ++i) {
            const Line& line = lines.at(i);
            const QTextLine textLine = line.layout->lineAt(line.number);
            // Letters of another font may be higher: all lines stand on a grid by their base line.
            const qreal base = part.top + settings.padding + (i - part.firstLine + 0.76) * settings.lineHeight;
            painter.setPen(line.color);
            textLine.draw(&painter, QPointF(line.left, base - textLine.ascent()));
        }
    }
    if (settings.rule != FlowStrip::NoRule) {
        const bool isStrong = settings.rule == FlowStrip::StrongRule;
        const qreal bottom = part.top + part.lineCount * settings.lineHeight + 2 * settings.padding;
        painter.setPen(
            QPen(isStrong ? Qt::black : QColor(185, 185, 185), width * (isStrong ? strongRule : thinRule) / 2));
        painter.drawLine(QPointF(0, bottom), QPointF(width, bottom));
    }
}
