#include "tool/PageFlow.h"
#include "tool/ReportContent.h"

#include <QBuffer>
#include <QDateTime>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPainter>
#include <QPdfWriter>

#include <utility>

namespace
{

constexpr int dotsPerInch = 1200;
constexpr qreal millimetre = dotsPerInch / 25.4;
constexpr qreal pageWidth = 210 * millimetre;
constexpr qreal pageHeight = 297 * millimetre;
constexpr qreal margin = 20 * millimetre;
constexpr qreal headerHeight = 9 * millimetre; ///< from the second page on, below the upper margin
constexpr qreal footerBase = pageHeight - 13 * millimetre;
constexpr qreal contentWidth = pageWidth - 2 * margin;
constexpr qreal contentHeight = pageHeight - 2 * margin - headerHeight;
constexpr qreal gap = 3 * millimetre; ///< between columns
constexpr qreal bodySize = 10;
constexpr qreal smallSize = 8.5;

constexpr QRgb grey = qRgb(85, 85, 85);
constexpr QRgb ruleGrey = qRgb(185, 185, 185);

qreal lineHeightOf(qreal points)
{
    return points * 1.36 * dotsPerInch / 72;
}

/// The first of some plain faces that this machine has.
QString family()
{
    const QStringList present = QFontDatabase().families();
    for (const QString& name :
         {QStringLiteral("Liberation Sans"), QStringLiteral("Arial"), QStringLiteral("DejaVu Sans Condensed")}) {
        if (present.contains(name)) {
            return name;
        }
    }
    return QStringLiteral("DejaVu Sans");
}

/// Turns the content of a report into strips.
class Typesetter
{
public:
    Typesetter(PageFlow& pageFlow, QString fontFamily) : flow(pageFlow), fontName(std::move(fontFamily))
    {
    }

    void set(const ReportContent& content);

    QFont font(qreal points, bool isBold = false) const;

private:
    void setLine(const FlowText& text, qreal points, qreal spaceAbove, bool keepsNext);
    void setSection(const ReportSection& section);
    void setTable(const ReportTable& table);
    QVector<int> setHead(const ReportTable& table);
    void setItem(const QString& item);

    QVector<FlowText> styled(const ReportCell& cell) const;
    FlowStrip strip(const ReportRow& row, const QVector<int>& shares) const;

    PageFlow& flow;
    const QString fontName;
};

void Typesetter::set(const ReportContent& content)
{
    setLine({content.title, font(20, true), Qt::black}, 20, 0, true);
    setLine({content.name, font(13), grey}, 13, 0, true);
    for (const ReportSection& section : content.sections) {
        setSection(section);
    }
}

QFont Typesetter::font(qreal points, bool isBold) const
{
    QFont font(fontName);
    font.setPointSizeF(points);
    font.setBold(isBold);
    return font;
}

/// Text over the whole width.
void Typesetter::setLine(const FlowText& text, qreal points, qreal spaceAbove, bool keepsNext)
{
    FlowStrip strip;
    strip.columns = {{0, contentWidth, {text}}};
    strip.lineHeight = lineHeightOf(points);
    strip.spaceAbove = spaceAbove;
    strip.keepsNext = keepsNext;
    flow.append(strip);
}

void Typesetter::setSection(const ReportSection& section)
{
    if (!section.heading.isEmpty()) {
        setLine({section.heading, font(13, true), Qt::black}, 13, 8 * millimetre, true);
    }
    setTable(section.table);
    for (const QString& item : section.items) {
        setItem(item);
    }
    for (const QString& note : section.notes) {
        setLine({note, font(bodySize), grey}, bodySize, 2.5 * millimetre, false);
    }
}

void Typesetter::setTable(const ReportTable& table)
{
    const QVector<int> head = setHead(table);
    QVector<int> headers = head;
    for (int i = 0; i < table.rows.size(); ++i) {
        const ReportRow& row = table.rows.at(i);
        FlowStrip rowStrip = strip(row, row.isTitle ? QVector<int>{100} : table.shares);
        if (row.isTitle) {
            rowStrip.headers = head;
            rowStrip.keepsNext = true;
            rowStrip.spaceAbove = i == 0 ? 0 : 2.5 * millimetre;
            headers = head + QVector<int>{flow.append(rowStrip)};
            continue;
        }
        rowStrip.headers = headers;
        // What a title stands above stays together with it.
        rowStrip.keepsNext = headers != head && i + 1 < table.rows.size() && !table.rows.at(i + 1).isTitle;
        rowStrip.spaceAbove = i == 0 && head.isEmpty() ? 2 * millimetre : 0;
        flow.append(rowStrip);
    }
}

/// Returns the strip of the columns' titles, nothing if there are none.
QVector<int> Typesetter::setHead(const ReportTable& table)
{
    if (table.titles.isEmpty() || table.rows.isEmpty()) {
        return {};
    }
    ReportRow row;
    for (const QString& title : table.titles) {
        row.cells.append(ReportCell{{title, ReportText::Quiet}});
    }
    FlowStrip head = strip(row, table.shares);
    head.rule = FlowStrip::StrongRule;
    head.keepsNext = true;
    return {flow.append(head)};
}

void Typesetter::setItem(const QString& item)
{
    constexpr qreal indent = 5 * millimetre;
    FlowStrip strip;
    strip.columns = {{0, indent, {{QStringLiteral("\u2022"), font(bodySize), Qt::black}}},
                     {indent, contentWidth - indent, {{item, font(bodySize), Qt::black}}}};
    strip.lineHeight = lineHeightOf(bodySize);
    strip.spaceAbove = 1.5 * millimetre;
    flow.append(strip);
}

QVector<FlowText> Typesetter::styled(const ReportCell& cell) const
{
    QVector<FlowText> paragraphs;
    for (const ReportText& text : cell) {
        paragraphs.append({text.text, font(bodySize, text.style == ReportText::Strong),
                           text.style == ReportText::Quiet ? QColor(grey) : QColor(Qt::black)});
    }
    return paragraphs;
}

FlowStrip Typesetter::strip(const ReportRow& row, const QVector<int>& shares) const
{
    FlowStrip strip;
    qreal left = 0;
    for (int i = 0; i < row.cells.size(); ++i) {
        const qreal width = contentWidth * shares.value(i) / 100;
        const bool isLast = i + 1 == row.cells.size();
        strip.columns.append({left, isLast ? width : width - gap, styled(row.cells.at(i))});
        left += width;
    }
    strip.lineHeight = lineHeightOf(bodySize);
    strip.padding = 1.1 * millimetre;
    strip.rule = FlowStrip::ThinRule;
    return strip;
}

/// What stands on each page above and below the flow.
void paintMargins(QPainter& painter, const QFont& font, const ReportContent& content, int page, int pageCount)
{
    painter.setFont(font);
    painter.setPen(QColor(grey));
    const QFontMetricsF metrics(font, painter.device());
    const QString number = QStringLiteral("Page %1 of %2").arg(page + 1).arg(pageCount);
    const qreal numberLeft = margin + contentWidth - metrics.horizontalAdvance(number);
    painter.drawText(QPointF(numberLeft, footerBase), number);
    painter.drawText(QPointF(margin, footerBase), content.date);
    if (page > 0) {
        const QString title = content.title + QStringLiteral(" \u2013 ") + content.name;
        painter.drawText(QPointF(margin, margin), metrics.elidedText(title, Qt::ElideRight, contentWidth));
        painter.setPen(QPen(QColor(ruleGrey), 0.15 * millimetre));
        painter.drawLine(QPointF(margin, margin + 2 * millimetre),
                         QPointF(margin + contentWidth, margin + 2 * millimetre));
    }
}

/// The writer notes the moment when it wrote. The same report shall be the same file: the moment of its source stands
/// there instead, in the same number of bytes, as the end of the file counts them.
void setCreationDate(QByteArray& document, const QDateTime& created)
{
    const QByteArray key("/CreationDate (D:");
    const int begin = document.indexOf(key);
    const int end = document.indexOf(')', begin);
    if (begin < 0 || end < 0) {
        return;
    }
    const int from = begin + key.size();
    const QDateTime moment = created.isValid() ? created.toUTC() : QDateTime::fromSecsSinceEpoch(0, Qt::UTC);
    QByteArray date = moment.toString(QStringLiteral("yyyyMMddHHmmss")).toLatin1() + "Z)";
    date.append(QByteArray(qMax(0, end + 1 - from - date.size()), ' '));
    document.replace(from, end + 1 - from, date);
}

} // namespace

QByteArray reportPdf(const ReportContent& content, const QDateTime& created)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&buffer);
        writer.setResolution(dotsPerInch);
        writer.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF()));
        writer.setTitle(content.title + QStringLiteral(" \u2013 ") + content.name);
        writer.setCreator(QStringLiteral("hubn-tool"));
        PageFlow flow(writer, contentWidth, contentHeight);
        Typesetter typesetter(flow, family());
        typesetter.set(content);
        const int pageCount = flow.breakIntoPages();
        QPainter painter(&writer);
        for (int page = 0; page < pageCount; ++page) {
            if (page > 0) {
                writer.newPage();
            }
            paintMargins(painter, typesetter.font(smallSize), content, page, pageCount);
            painter.save();
            painter.translate(margin, margin + (page > 0 ? headerHeight : 0));
            flow.paint(painter, page);
            painter.restore();
        }
    }
    QByteArray document = buffer.data();
    setCreationDate(document, created);
    return document;
}
