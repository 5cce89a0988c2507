#pragma once

#include "model/Device.h"
#include "model/RelayInfo.h"
#include "model/ScriptRules.h"
#include "texts/texts.h"

#include <QString>

/// A model with the built-in catalogue and one script in use: number 4, "Horn", which waits for a fire on channel 1 and
/// switches output 1 of the head unit, "Siren", on for 5 minutes.
struct ReportedSite
{
    ReportedSite()
    {
        model.setCatalogue(catalogue);
        script->name = QStringLiteral("Horn");
        wait(texts::channelAlarm());
        script->mode = model.modes().value(1);
        script->duration = model.durations().value(19);
        siren->name = QStringLiteral("Siren");
        siren->activatedScripts = {script};
    }

    void wait(const QString& stateName)
    {
        script->stateChannel = scriptRules::findState(model.stateChannels(), stateName);
        scriptRules::updateTrigger(*script);
    }

    /// An output of a terminal that has the script too; the terminal comes into being if need be.
    RelayInformationPtr addOutput(quint16 address, const QString& terminalName, const QString& outputName)
    {
        const GroupRelayPtr group =
            model.findGroup(address) ? model.findGroup(address) : model.addGroup(terminalName, address);
        model.addOutput(group, outputName);
        group->outputs.last()->name = outputName; // behind the eighth they have neither number nor name
        group->outputs.last()->activatedScripts = {script};
        return group->outputs.last();
    }

    void filterByAddress(const QVector<int>& addresses)
    {
        script->activateFilter[ScriptInfo::ByAddress] = true;
        for (const int address : addresses) {
            script->addressFilter[address == 0 ? 31 : address - 1] = true;
        }
    }

    void filterByType(quint8 terminalClass, quint8 version = 0, quint8 type = 0, quint8 characteristic = 0)
    {
        script->activateFilter[ScriptInfo::ByType] = true;
        static_cast<TerminalIdentity&>(*script->terminalFilter) = {terminalClass, version, type, characteristic};
    }

    const Device catalogue{{}, nullptr, Device::Files::ReadOnly};
    RelayInfo model;
    const ScriptInfoPtr script = model.findScript(3);
    const RelayInformationPtr siren = model.findOutput(0, 0);
};

/// A text with plain blanks where it had such that keep words in one line.
inline QString withBlanks(QString text)
{
    return text.replace(QChar(QChar::Nbsp), QLatin1Char(' '));
}
