#include "tool/ReportContent.h"

#include <QTextStream>

namespace
{

const char* const style = R"(
@page { size: A4; margin: 20mm 20mm 22mm;
        @bottom-right { content: "page " counter(page) " of " counter(pages); font: 8.5pt sans-serif; color: #666; } }
body { font: 10.5pt/1.4 "Liberation Sans", "Nimbus Sans", Arial, "DejaVu Sans", sans-serif; color: #000;
       background: #fff; max-width: 170mm; margin: 12mm auto; padding: 0 5mm; }
h1 { font-size: 20pt; margin: 0; }
h2 { font-size: 13pt; margin: 9mm 0 2mm; break-after: avoid; page-break-after: avoid; }
.name { font-size: 13pt; color: #555; margin: 0 0 6mm; }
table { width: 100%; border-collapse: collapse; table-layout: fixed; }
th, td { text-align: left; vertical-align: top; padding: 1.1mm 2mm 1.1mm 0; overflow-wrap: anywhere; }
th { font-size: 9.5pt; font-weight: normal; color: #555; border-bottom: 0.3mm solid #000; }
td { border-bottom: 0.15mm solid #bbb; }
tr { break-inside: avoid; page-break-inside: avoid; }
tr.title td { padding-top: 3mm; break-after: avoid; page-break-after: avoid; }
p { margin: 0; overflow-wrap: anywhere; }
.note { margin-top: 2.5mm; color: #555; }
.quiet { color: #555; }
ul { margin: 0; padding-left: 5mm; }
li { margin-bottom: 1.5mm; overflow-wrap: anywhere; break-inside: avoid; }
@media print { body { max-width: none; margin: 0; padding: 0; } }
)";

/// Writes elements; every text goes through escaped().
class Page
{
public:
    QString write(const ReportContent& content);

private:
    static QString escaped(const QString& text)
    {
        return text.toHtmlEscaped();
    }

    void section(const ReportSection& section);
    void table(const ReportTable& table);
    void row(const ReportRow& row, int columns);
    void paragraph(const ReportText& text);
    void note(const QString& text);

    QString page;
    QTextStream out{&page};
};

QString Page::write(const ReportContent& content)
{
    const QString title = escaped(content.title + QStringLiteral(" \u2013 ") + content.name);
    out << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\"/>\n<title>" << title
        << "</title>\n<style>" << style << "</style>\n</head>\n<body>\n<h1>" << escaped(content.title)
        << "</h1>\n<p class=\"name\">" << escaped(content.name) << "</p>\n";
    for (const ReportSection& part : content.sections) {
        section(part);
    }
    out << "</body>\n</html>\n" << Qt::flush;
    return page;
}

void Page::section(const ReportSection& section)
{
    out << "<section>\n";
    if (!section.heading.isEmpty()) {
        out << "<h2>" << escaped(section.heading) << "</h2>\n";
    }
    if (!section.table.rows.isEmpty()) {
        table(section.table);
    }
    if (!section.items.isEmpty()) {
        out << "<ul>\n";
        for (const QString& item : section.items) {
            out << "<li>" << escaped(item) << "</li>\n";
        }
        out << "</ul>\n";
    }
    for (const QString& line : section.notes) {
        note(line);
    }
    out << "</section>\n";
}

void Page::table(const ReportTable& table)
{
    out << "<table>\n<colgroup>";
    for (const int share : table.shares) {
        out << "<col style=\"width: " << share << "%\"/>";
    }
    out << "</colgroup>\n";
    if (!table.titles.isEmpty()) {
        out << "<thead><tr>";
        for (const QString& title : table.titles) {
            out << "<th scope=\"col\">" << escaped(title) << "</th>";
        }
        out << "</tr></thead>\n";
    }
    out << "<tbody>\n";
    for (const ReportRow& line : table.rows) {
        row(line, table.shares.size());
    }
    out << "</tbody>\n</table>\n";
}

void Page::row(const ReportRow& row, int columns)
{
    out << (row.isTitle ? "<tr class=\"title\">" : "<tr>");
    for (const ReportCell& cell : row.cells) {
        if (row.isTitle) {
            out << "<td colspan=\"" << columns << "\">";
        } else {
            out << "<td>";
        }
        for (const ReportText& part : cell) {
            paragraph(part);
        }
        out << "</td>";
    }
    out << "</tr>\n";
}

void Page::paragraph(const ReportText& text)
{
    switch (text.style) {
    case ReportText::Strong:
        out << "<p><b>" << escaped(text.text) << "</b></p>";
        break;
    case ReportText::Quiet:
        out << "<p class=\"quiet\">" << escaped(text.text) << "</p>";
        break;
    case ReportText::Plain:
        out << "<p>" << escaped(text.text) << "</p>";
        break;
    }
}

void Page::note(const QString& text)
{
    out << "<p class=\"note\">" << escaped(text) << "</p>\n";
}

} // namespace

QString reportHtml(const ReportContent& content)
{
    return Page().write(content);
}
