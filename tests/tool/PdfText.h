#pragma once

#include <QProcess>
#include <QStringList>

/// The pages of a PDF document as text, laid out as they are on paper. Empty if pdftotext isn't there or refuses it.
inline QStringList pdfPages(const QByteArray& document)
{
    QProcess process;
    process.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), QStringLiteral("-enc"),
                                                QStringLiteral("UTF-8"), QStringLiteral("-"), QStringLiteral("-")});
    process.write(document);
    process.closeWriteChannel();
    if (!process.waitForFinished() || process.exitCode() != 0) {
        return {};
    }
    // A form feed ends each page. Pairs of letters may be drawn as one.
    QString text = QString::fromUtf8(process.readAllStandardOutput());
    text.replace(QStringLiteral("\uFB00"), QStringLiteral("ff"))
        .replace(QStringLiteral("\uFB01"), QStringLiteral("fi"));
    QStringList pages = text.replace(QChar(QChar::Nbsp), QLatin1Char(' ')).split(QLatin1Char('\f'));
    pages.removeLast();
    return pages;
}
