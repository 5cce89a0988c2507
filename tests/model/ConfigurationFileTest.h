#pragma once

#include "model/RelayInfo.h"
#include "model/modelShorthand.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

inline QList<QByteArray> linesOf(const QByteArray& text)
{
    QList<QByteArray> lines;
    for (int from = 0; from < text.size();) {
        int end = text.indexOf("\r\n", from);
        end = end < 0 ? text.size() : end;
        lines.append(text.mid(from, end - from));
        from = end + 2;
    }
    return lines;
}

/// A model and a directory for the files that it is loaded from and saved to.
class ConfigurationFileTest : public QObject
{
protected:
    std::unique_ptr<QTemporaryDir> directory;
    std::unique_ptr<RelayInfo> model;

    /// An empty directory and a model in its reset state.
    void begin()
    {
        directory = std::make_unique<QTemporaryDir>();
        QVERIFY(directory->isValid());
        model = std::make_unique<RelayInfo>();
    }

    /// Loads a text; returns the result.
    int load(const QByteArray& text)
    {
        QFile file(directory->filePath(s("loaded.cfg")));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) {
            return -1;
        }
        file.close();
        return model->loadFromFile(file.fileName());
    }
    QByteArray save(const RelayInfo& from)
    {
        QFile file(directory->filePath(s("saved.cfg")));
        const bool saved = from.saveToFile(file.fileName()) == 0 && file.open(QIODevice::ReadOnly);
        return saved ? file.readAll() : QByteArray();
    }

    /// The lines that the model is saved with and that a reset model is not.
    QList<QByteArray> changes()
    {
        const QList<QByteArray> usual = linesOf(save(RelayInfo()));
        QList<QByteArray> lines;
        const QList<QByteArray> saved = linesOf(save(*model));
        for (const QByteArray& line : saved) {
            if (!usual.contains(line)) {
                lines.append(line);
            }
        }
        return lines;
    }
};
