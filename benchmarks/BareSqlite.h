#pragma once

#include "eventlog/EventOfTable.h"

#include <QByteArrayList>
#include <QList>

#include <functional>

struct sqlite3;

/// What the log's way into its table and out of it is measured by: SQLite's own calls for the same statements, on a
/// file in the working directory with the same settings, and nothing else. Used by one thread.
class BareSqlite
{
public:
    /// Makes a call on a thread of its own, as the program writes its log: SQLite allocates for every value of a
    /// statement, and a heap of its own isn't in pieces from what was before. Returns when it is done.
    static void onThreadOfItsOwn(const std::function<void()>& call);

    /// With an empty table. The texts of the statements are made here.
    explicit BareSqlite(const QList<QList<EventOfTable>>& batches);
    ~BareSqlite();
    Q_DISABLE_COPY_MOVE(BareSqlite)

    /// Prepares and steps a statement for each batch.
    void insert();

    /// Steps through all rows and takes the text of each cell, as UTF-16. Returns the bytes of all of them.
    qint64 fetch();

    /// Whether every call so far has done what it should.
    bool isGood() const
    {
        return good;
    }

private:
    void execute(const QByteArray& statement);

    sqlite3* database = nullptr;
    QByteArrayList inserts;
    bool good = true;
};
