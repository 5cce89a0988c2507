#pragma once

#include "model/ConfigurationError.h"
#include "model/GroupRelay.h"
#include "model/ParamTables.h"
#include "model/ScriptInfo.h"
#include "model/TerminalType.h"

#include <QByteArrayList>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

class Device;
class QIODevice;

/// The configuration model: the head unit and its terminals, their outputs, the 32 scripts, and the lookup tables from
/// which every parameter takes its value, text, icon and colour.
///
/// One instance exists; the main window owns it for the life of the process, and the editors share it. It lives on the
/// GUI thread. The tables are built once and never change, but for the terminal types, which the catalogue fills.
/// Records are handed out by shared pointer and are edited in place.
class RelayInfo : public QObject
{
    Q_OBJECT

public:
    /// How a file operation ended.
    enum FileResult
    {
        FileOk = 0, ///< written whole, or read, whatever errors the text held
        FileNotWritten = 1,
        FileNotOpened = 2,
        FileNotFound = 3
    };

    explicit RelayInfo(QObject* parent = nullptr);

    /// The tables, in table order.
    ParamItems stateChannels() const
    {
        return tables.stateChannels;
    }
    ParamItems buttonStates() const
    {
        return tables.buttonStates;
    }
    ParamItems analogStates() const
    {
        return tables.analogStates;
    }
    ParamItems terminalStates() const
    {
        return tables.terminalStates;
    }
    ParamItems outputStates() const
    {
        return tables.outputStates;
    }
    ParamItems modes() const
    {
        return tables.modes;
    }
    ParamItems durations() const
    {
        return tables.durations;
    }
    ParamItems delays() const
    {
        return tables.delays;
    }
    /// A blank row, then the catalogue sorted by label.
    TerminalTypes terminalTypes() const
    {
        return types;
    }

    /// Always 32.
    QList<ScriptInfoPtr> scripts() const
    {
        return scriptList;
    }
    /// Head unit first.
    QList<GroupRelayPtr> groups() const
    {
        return groupList;
    }
    /// Last list from the head unit.
    QList<ConnectedTerminalPtr> connectedTerminals() const
    {
        return connectedList;
    }

    QString comment() const
    {
        return commentText;
    }
    void setComment(const QString& comment)
    {
        commentText = comment;
    }

    /// Errors of the last loadFromFile().
    int errorCount() const
    {
        return fileErrors;
    }

    ScriptInfoPtr findScript(quint8 number) const;                        ///< first with that number, else null
    GroupRelayPtr findGroup(quint16 address) const;                       ///< first with that address, else null
    RelayInformationPtr findOutput(quint16 address, quint8 number) const; ///< null if there is none
    ConnectedTerminalPtr findConnectedTerminal(quint8 address) const;     ///< first match, else null

    /// Appends an empty, open, not connected group and sorts the groups by address. Returns the new group.
    GroupRelayPtr addGroup(const QString& name, quint16 address);

    /// Appends an output with the lowest number 0 to 7 that is free; with none free, a nameless output numbered 255.
    void addOutput(const GroupRelayPtr& group, const QString& name);

    /// Removes a group and returns the address of the one in front of it. The head unit, or a group that isn't in the
    /// model, stays, and the result is 0.
    quint16 removeGroup(const GroupRelayPtr& group);

    void removeDisconnectedGroups(); ///< all but the head unit that are not connected
    void removeIdleGroups();         ///< those of them whose outputs have no script

    /// Appends a terminal type and sorts the list by label; with first set the list is begun anew.
    void addTerminalType(bool first, const QString& name, quint8 terminalClass, quint8 version, quint8 type,
                         quint8 characteristic, const QStringList& outputs);

    /// Fills the list of terminal types with the models of a catalogue. An empty one leaves it as it is.
    void setCatalogue(const Device& catalogue);

    void resetGroups(bool headUnitOnly); ///< the head unit, and unless told otherwise the connected class 2 terminals
    void resetScripts();                 ///< every script back to its defaults, in place

    /// @name Records of the device, one byte array each. Records that are too short are passed over.
    /// @{
    void readTerminalRecords(const QByteArrayList& records);
    void readOutputRecords(const QByteArrayList& records);
    void readScriptRecords(const QByteArrayList& records);
    QByteArrayList makeOutputRecords() const;
    QByteArrayList makeScriptRecords() const;
    /// @}

    /// Writes the configuration as a text file. Returns FileOk, or FileNotWritten if it could not be written whole; the
    /// file that stood there before is then still there.
    int saveToFile(const QString& path) const;

    /// The bytes that saveToFile() writes.
    QByteArray fileContents() const;

    /// Reads a configuration file. Returns FileOk if it was read, whatever errorCount() it gave; with FileNotOpened and
    /// FileNotFound the model is untouched. With `errors` it tells each line that is wrong. What their faults count is
    /// errorCount(); there may be lines with faults that count for nothing.
    int loadFromFile(const QString& path, ConfigurationErrors* errors = nullptr);

    /// Reads the contents of a configuration file as loadFromFile() does.
    void loadFileContents(QByteArray contents);

private:
    GroupRelayPtr makeTerminalGroup(const ConnectedTerminal& terminal) const;
    void appendHeadUnit(bool connected);
    void sortGroups();
    void load(QIODevice& file, ConfigurationErrors* errors);

    const ParamTables tables;
    TerminalTypes types;
    QList<ScriptInfoPtr> scriptList;
    QList<GroupRelayPtr> groupList;
    QList<ConnectedTerminalPtr> connectedList;
    QString commentText;
    int fileErrors = 0;
};
