#pragma once

#include "support/DebugLines.h"
#include "support/LogWindow.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

constexpr int waitTime = 30000;

/// A record that gives one row, of a terminal with a number that can be recognised.
inline QByteArray record(int number)
{
    QByteArray data = QByteArray::fromHex("375425091110203200010700000000");
    data.append('\0');
    data[7] = char(number >> 8);
    data[8] = char(number);
    return data;
}

inline QByteArrayList block(int first, int last)
{
    QByteArrayList records;
    for (int number = first; number <= last; ++number) {
        records.append(record(number));
    }
    return records;
}

/// What the unit hands out for a log of some records: the newest block first, in each the oldest record first.
inline QList<QByteArrayList> blocksOf(int records)
{
    QList<QByteArrayList> blocks;
    for (int last = records; last > 0; last -= 4) {
        blocks.append(block(qMax(1, last - 3), last));
    }
    return blocks;
}

inline void handOver(LogTab& tab, int records)
{
    const QList<QByteArrayList> blocks = blocksOf(records);
    for (const QByteArrayList& block : blocks) {
        tab.sl_ReceiveDataEvents(block, false);
    }
    tab.sl_ReceiveDataEvents({}, true);
}

inline QString cell(const LogWindow& window, int row, int column)
{
    return window.view->model()->index(row, column).data().toString();
}

/// The number that a record was made with, read from the two columns that carry it.
inline int numberOfRow(const LogWindow& window, int row)
{
    return cell(window, row, 13).toInt() << 8 | cell(window, row, 14).toInt();
}

/// The lines of the program, which begin with a time, without that.
inline QStringList textsWithoutTime(const QStringList& lines)
{
    static const QRegularExpression time(QStringLiteral("^\\d\\d:\\d\\d:\\d\\d:\\d\\d\\d(?= )"));
    QStringList texts;
    for (const QString& line : lines) {
        if (time.match(line).hasMatch()) {
            texts.append(line.mid(12));
        }
    }
    return texts;
}

/// A log tab with its window, in a working directory of its own.
class LogTabTest : public QObject
{
protected:
    std::unique_ptr<QTemporaryDir> directory;
    std::unique_ptr<LogWindow> window;

    void begin()
    {
        directory = std::make_unique<QTemporaryDir>();
        QVERIFY(directory->isValid());
        QVERIFY(QDir::setCurrent(directory->path()));
        window = std::make_unique<LogWindow>();
    }
    void end()
    {
        window.reset();
        QVERIFY(!QFileInfo(path(QStringLiteral("Log.db"))).isFile());
        QDir::setCurrent(QDir::tempPath());
        directory.reset();
    }

    QString path(const QString& name) const
    {
        return directory->filePath(name);
    }
    bool attached() const
    {
        return window->view->model() != nullptr && !window->countRows->text().isEmpty();
    }

    /// Shows the window with its database at work and the empty table in view.
    void start()
    {
        window->tab->startDataBase();
        window->show();
        QTRY_VERIFY_WITH_TIMEOUT(window->view->model() != nullptr, waitTime);
    }

    /// Reads a log of some records and waits until it is in view.
    void readLog(int records)
    {
        window->tab->readLog();
        QVERIFY(window->view->model() == nullptr);
        handOver(*window->tab, records);
        QTRY_VERIFY_WITH_TIMEOUT(attached(), waitTime);
    }

    /// Loads a file and waits until its rows are in view.
    void load(const QString& name)
    {
        window->dialogs.openAnswers.append(name);
        // The rows of before may stay in view until the worker is done with them.
        window->countRows->clear();
        window->tab->sl_LoadLogFromFile();
        QTRY_VERIFY_WITH_TIMEOUT(attached(), waitTime);
    }
};
