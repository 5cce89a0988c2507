#pragma once

#include "model/TerminalType.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>

#include <functional>

class QTextStream;

/// One model of the catalogue.
struct DeviceRecord : TerminalIdentity
{
    QString name = QStringLiteral("???");
    QStringList outputs; ///< default names of the outputs; may be fewer than the terminal has
};

/// The catalogue of models, kept in "Devices_EN.csv" in the working directory so that a service engineer can add a
/// model with a text editor. If the file is missing, the built-in table is written and read.
///
/// The main window owns its one instance. It lives on the thread that created it.
class Device : public QObject
{
    Q_OBJECT

public:
    /// Shows an error to the user: title and text of a message box.
    using Reporter = std::function<void(const QString& title, const QString& text)>;

    /// What becomes of a file that is missing.
    enum class Files
    {
        Kept,     ///< it is written
        ReadOnly, ///< nothing; the built-in table serves
    };

    /// Without a reporter an error goes to the debug stream alone.
    explicit Device(Reporter errorReporter = {}, QObject* parent = nullptr, Files keptFiles = Files::Kept);

    int deviceCount() const
    {
        return records.size();
    }

    /// Name, class, version, type, characteristic (each uchar) and the output names (QStringList) of a row; an empty
    /// list past the end.
    QVariantList deviceRow(int index) const;

    void readCatalogue();  ///< replaces the table by what the file holds
    void writeCatalogue(); ///< writes both built-in files, then reads the one that is used

private:
    void readFile();
    void readRecords(QTextStream& stream);

    const Files files;
    Reporter reportError;
    QList<DeviceRecord> records;
};
