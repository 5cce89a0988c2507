#pragma once

#include "model/RelayInfo.h"
#include "model/ScriptRules.h"
#include "model/tables.h"

#include <QRandomGenerator>
#include <QString>

/// Fills models with configurations as an engineer or a device could make them, from a seed: the same seed gives the
/// same configuration on every machine.
class RandomModel
{
public:
    explicit RandomModel(quint32 seed) : random(seed)
    {
    }

    /// A few kinds of terminals, among them two that share their numbers but for one.
    static void addTerminalTypes(RelayInfo& model)
    {
        model.addTerminalType(true, QStringLiteral("Haldeon-NX"), 2, 1, 0x41, 0x20,
                              {QStringLiteral("Output"), QStringLiteral("Output")});
        model.addTerminalType(false, QStringLiteral("Dorn-NX(single-channel)"), 1, 4, 0x31, 0x10,
                              {QStringLiteral("Output")});
        model.addTerminalType(false, QStringLiteral("Dorn-NX(two-channel)"), 1, 4, 0x31, 0x20,
                              {QStringLiteral("Output"), QStringLiteral("Output")});
        model.addTerminalType(false, QStringLiteral("PNB-NX"), 3, 1, 0x30, 0x10, {QStringLiteral("Output")});
        model.addTerminalType(false, QStringLiteral("Termia-NX"), 4, 1, 0x15, 0x11, {QStringLiteral("Output")});
    }

    /// Groups, outputs and scripts; dates from 1 to 31 and 1 to 12, so beyond what the reader of files takes.
    void fill(RelayInfo& model)
    {
        const QList<ScriptInfoPtr> scripts = model.scripts();
        for (const ScriptInfoPtr& script : scripts) {
            fillScript(model, *script);
        }
        for (int address = 1; address < 32; ++address) {
            if (below(3) == 0) {
                const GroupRelayPtr group = model.addGroup(name(), quint16(address));
                group->expand = flag();
                const int outputs = below(8);
                for (int i = 0; i <= outputs; ++i) {
                    model.addOutput(group, name());
                }
            }
        }
        const QList<GroupRelayPtr> groups = model.groups();
        for (const GroupRelayPtr& group : groups) {
            for (const RelayInformationPtr& output : std::as_const(group->outputs)) {
                fillOutput(model, *output);
            }
        }
        model.setComment(name() + QLatin1Char('\n') + name());
    }

    void fillScript(const RelayInfo& model, ScriptInfo& script)
    {
        script.name = name();
        script.mode = any(model.modes());
        script.delay = any(model.delays());
        script.duration = any(model.durations());
        script.activateFilter = flags(4);
        script.daysOfWeek = flags(7);
        script.timeFilter = {below(60), below(24), below(60), below(24)};
        script.dateFilter = {1 + below(31), 1 + below(12), 1 + below(31), 1 + below(12)};
        script.addressFilter = flags(32);
        script.numberChannels = flags(4);
        scriptRules::setStateChannel(
            script, below(5) == 0 ? scriptRules::makeOtherState(quint8(below(256))) : any(model.stateChannels()),
            scriptRules::TypeFilter::Keep);
        scriptRules::setTerminalStates(script, rowsOfMask(model.terminalStates(), flag() ? below(256) : 0));
        fillFilter(model, script);
    }

    void fillOutput(const RelayInfo& model, RelayInformation& output)
    {
        output.name = name();
        output.startState = any(model.outputStates());
        output.returnStartState = flag();
        output.activatedScripts.clear();
        const int count = below(6);
        for (int i = 0; i < count; ++i) {
            output.activatedScripts.append(any(model.scripts()));
        }
    }

    int below(int limit)
    {
        return int(random.bounded(limit));
    }
    bool flag()
    {
        return below(2) != 0;
    }

    QList<bool> flags(int count)
    {
        QList<bool> list;
        for (int i = 0; i < count; ++i) {
            list.append(flag());
        }
        return list;
    }

    /// A name without blanks at its ends and without "=", which the reader of files would cut.
    QString name()
    {
        static const QString letters = QStringLiteral("abcXYZ019 .,;:[]()%№#\"'&<>\\/-+äжд日\t");
        QString text = QStringLiteral("n");
        const int length = below(12);
        for (int i = 0; i < length; ++i) {
            text += letters.at(below(letters.size()));
        }
        return text + QLatin1Char('m');
    }

    QByteArray bytes(int count)
    {
        QByteArray list(count, '\0');
        for (char& byte : list) {
            byte = char(below(256));
        }
        return list;
    }

private:
    template <typename Pointer>
    Pointer any(const QList<Pointer>& rows)
    {
        return rows.at(below(rows.size()));
    }

    void fillFilter(const RelayInfo& model, ScriptInfo& script)
    {
        if (flag()) {
            script.terminalFilter = any(model.terminalTypes());
            return;
        }
        script.terminalFilter = TerminalTypePtr::create();
        script.terminalFilter->terminalClass = scriptRules::allowedClass(below(16));
        script.terminalFilter->version = quint8(below(16));
        script.terminalFilter->type = quint8(below(256));
        script.terminalFilter->characteristic = quint8(below(256));
    }

    QRandomGenerator random;
};
