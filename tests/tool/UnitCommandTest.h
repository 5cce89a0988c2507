#pragma once

#include "ToolRun.h"
#include "simulator/DemoInstallation.h"
#include "simulator/UnitSimulator.h"

#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QtTest>

/// What tests of commands that talk to a unit share: a simulated one, and a folder for files.
class UnitCommandTest : public QObject
{
protected:
    static constexpr int eventsOfUnit = 20;

    /// Runs a command line on the unit.
    ToolRun run(const QStringList& arguments) const
    {
        return ToolRun(arguments + QStringList{QStringLiteral("--port"), unit->portName()});
    }

    QString path(const QString& name) const
    {
        return folder->filePath(name);
    }

    QByteArray content(const QString& name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    void write(const QString& name, const QByteArray& bytes) const
    {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), qint64(bytes.size()));
    }

    QStringList files() const
    {
        return QDir(folder->path()).entryList(QDir::Files);
    }

    void makeUnit()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false")); // as the program does
        folder = std::make_unique<QTemporaryDir>();
        unit = std::make_unique<UnitSimulator>(
            demoInstallation(1, eventsOfUnit, QDateTime(QDate(2026, 3, 12), QTime(14, 5))));
        QVERIFY2(unit->isValid(), qUtf8Printable(unit->errorString()));
    }

    std::unique_ptr<UnitSimulator> unit;
    std::unique_ptr<QTemporaryDir> folder;
};
