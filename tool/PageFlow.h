#pragma once

#include <QFont>
#include <QString>
#include <QTextLayout>
#include <QVector>

#include <memory>
#include <vector>

class QPainter;
class QPaintDevice;

/// Text with a place on the width of a page.
struct FlowText
{
    QString text;
    QFont font;
    QColor color;
};

/// What stands side by side on a strip of the page and is kept together, unless it is taller than a page.
struct FlowStrip
{
    struct Column
    {
        qreal left = 0; ///< in dots, from the left margin
        qreal width = 0;
        QVector<FlowText> paragraphs;
    };

    enum Rule
    {
        NoRule,
        ThinRule,
        StrongRule
    };

    QVector<Column> columns;
    qreal lineHeight = 0;
    qreal spaceAbove = 0; ///< left out at the top of a page
    qreal padding = 0;    ///< above the lines and below them
    Rule rule = NoRule;   ///< below
    bool keepsNext = false;
    QVector<int> headers; ///< strips that are repeated above this one where it begins a further page
};

/// Strips, one under the other, on as many pages as they need. All lengths are dots of the device.
class PageFlow
{
public:
    PageFlow(QPaintDevice& device, qreal pageWidth, qreal pageHeight);

    /// Returns the strip's number.
    int append(const FlowStrip& strip);

    /// Breaks what was appended into pages and returns their count, at least 1.
    int breakIntoPages();

    /// Paints one page with its upper left corner at the painter's origin.
    void paint(QPainter& painter, int page) const;

private:
    /// A line of a strip, in the column where it stands.
    struct Line
    {
        std::shared_ptr<QTextLayout> layout;
        int number;
        qreal left;
        QColor color;
    };

    struct LaidOut
    {
        FlowStrip strip;
        QVector<QVector<Line>> columns;
        int lineCount = 0;
    };

    /// Lines of a strip on a page.
    struct Part
    {
        int strip;
        int firstLine;
        int lineCount;
        qreal top;
    };

    QVector<Line> linesOf(const FlowStrip::Column& column) const;
    qreal heightOf(int strip) const;
    qreal leastHeightOf(int strip) const;
    qreal heightWithFollowers(int strip) const;
    void beginPage();
    void repeatHeaders(const QVector<int>& headers);
    void place(int strip);
    void placePart(int strip, int firstLine, int lineCount);
    void paintPart(QPainter& painter, const Part& part) const;

    QPaintDevice& paintDevice;
    const qreal width;
    const qreal height;
    std::vector<LaidOut> strips;
    QVector<QVector<Part>> pages;
    qreal y = 0;
};
