#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

class QDateTime;

/// What a report says, without what it looks like: all of it plain text.

struct ReportText
{
    enum Style
    {
        Plain,
        Strong,
        Quiet
    };

    QString text;
    Style style = Plain;
};

/// Paragraphs, one under the other.
using ReportCell = QVector<ReportText>;

struct ReportRow
{
    QVector<ReportCell> cells;
    bool isTitle = false; ///< one cell over the whole width, which belongs to the rows under it
};

struct ReportTable
{
    QStringList titles;  ///< of the columns; empty for a table without a head
    QVector<int> shares; ///< of the width, in percent
    QVector<ReportRow> rows;
};

struct ReportSection
{
    QString heading; ///< empty for what stands above the first heading
    ReportTable table;
    QStringList items; ///< a list with a mark in front of each
    QStringList notes; ///< below all else
};

struct ReportContent
{
    QString title;
    QString name; ///< what the report is about
    QString date; ///< in words; empty if it isn't known
    QVector<ReportSection> sections;
};

/// The content as a page of its own.
QString reportHtml(const ReportContent& content);

/// The content on A4, with `created` as the date that the document itself bears. Needs a QGuiApplication.
QByteArray reportPdf(const ReportContent& content, const QDateTime& created);
