#include "tool/SiteReport.h"

#include "model/RelayInfo.h"
#include "model/ScriptRules.h"
#include "texts/texts.h"
#include "tool/ReportChecks.h"
#include "tool/ScriptSentence.h"
#include "tool/english.h"

#include <QFileInfo>
#include <QLocale>

#include <algorithm>

namespace siteReport
{

namespace
{

using english::tidied;

ReportCell cell(const QString& text, ReportText::Style style = ReportText::Plain)
{
    return {{text, style}};
}

QString dash()
{
    return QStringLiteral("\u2013");
}

QString dateOf(const QDateTime& moment)
{
    return moment.isValid() ? QLocale::c().toString(moment, QStringLiteral("d MMMM yyyy, HH:mm")) : QString();
}

// The head of the report

QString nameOf(const ReportSource& source)
{
    return source.unit
               ? QStringLiteral("%1 %2").arg(texts::headUnitName(), QString::number(source.unit->coordinator.serial))
               : tidied(QFileInfo(source.file).completeBaseName());
}

ReportRow fact(const QString& name, const QString& value)
{
    return {{cell(name, ReportText::Quiet), cell(value)}};
}

QString contents(const RelayInfo& model)
{
    int terminals = 0;
    int outputs = 0;
    const QList<GroupRelayPtr> groups = model.groups();
    for (const GroupRelayPtr& group : groups) {
        terminals += group->address == 0 ? 0 : 1;
        outputs += group->outputs.size();
    }
    const QList<ScriptInfoPtr> scripts = model.scripts();
    const auto active = std::count_if(scripts.cbegin(), scripts.cend(),
                                      [](const ScriptInfoPtr& script) { return scriptRules::hasTrigger(*script); });
    return QStringLiteral("head unit, %1, %2, %3 in use")
        .arg(english::counted(terminals, QStringLiteral("executive terminal")),
             english::counted(outputs, QStringLiteral("output")),
             english::counted(int(active), QStringLiteral("script")));
}

ReportSection head(const ReportSource& source)
{
    ReportSection section;
    section.table.shares = {24, 76};
    QVector<ReportRow>& rows = section.table.rows;
    const QString date = dateOf(source.moment);
    if (source.unit) {
        const CoordinatorInfo& coordinator = source.unit->coordinator;
        rows.append(fact(QStringLiteral("Unit"), texts::headUnitName()));
        rows.append(fact(QStringLiteral("Serial number"), QString::number(coordinator.serial)));
        rows.append(fact(QStringLiteral("Version"), coordinator.versionText()));
        rows.append(
            fact(QStringLiteral("Address"),
                 QStringLiteral("%1 on port %2").arg(QString::number(coordinator.address), tidied(source.unit->port))));
        rows.append(fact(QStringLiteral("Read on"), date.isEmpty() ? dash() : date));
    } else {
        rows.append(fact(QStringLiteral("File"), tidied(source.file)));
        rows.append(fact(QStringLiteral("Last changed"), date.isEmpty() ? dash() : date));
    }
    rows.append(fact(QStringLiteral("Contents"), contents(source.model)));
    ReportCell comment;
    const QStringList lines = source.model.comment().split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        const QString text = tidied(line);
        if (!text.isEmpty()) {
            comment.append({text, ReportText::Plain});
        }
    }
    if (!comment.isEmpty()) {
        rows.append({{cell(texts::commentTitle(), ReportText::Quiet), comment}});
    }
    return section;
}

// Terminals

QString classWord(const ConnectedTerminal& terminal)
{
    switch (terminal.terminalClass) {
    case SystemClass:
        return texts::classSystem();
    case SensorClass:
        return texts::classSensor();
    case ExecutiveClass:
        return texts::classExecutive();
    case InterfaceClass:
        return texts::classInterface();
    case AnalogClass:
        return texts::classAnalog();
    default:
        return dash();
    }
}

/// What is known of one address: outputs to set, a terminal that the unit reported, or both.
struct Place
{
    GroupRelayPtr group;
    ConnectedTerminalPtr terminal;
};

QVector<Place> places(const RelayInfo& model)
{
    QVector<Place> all;
    const QList<GroupRelayPtr> groups = model.groups();
    for (const GroupRelayPtr& group : groups) {
        all.append({group, model.findConnectedTerminal(quint8(group->address))});
    }
    const QList<ConnectedTerminalPtr> terminals = model.connectedTerminals();
    for (const ConnectedTerminalPtr& terminal : terminals) {
        if (!model.findGroup(terminal->address)) {
            all.append({GroupRelayPtr(), terminal});
        }
    }
    const auto addressOf = [](const Place& place) {
        return place.group ? int(place.group->address) : int(place.terminal->address);
    };
    std::stable_sort(all.begin(), all.end(),
                     [&](const Place& a, const Place& b) { return addressOf(a) < addressOf(b); });
    return all;
}

/// The name of a terminal, with its model where that is something else.
ReportCell nameOf(const Place& place)
{
    const QString name = place.group ? tidied(place.group->name) : tidied(place.terminal->label);
    ReportCell text = cell(name.isEmpty() ? dash() : name);
    if (place.terminal && place.group && place.terminal->label != place.group->name) {
        text.append({tidied(place.terminal->label), ReportText::Quiet});
    }
    return text;
}

QString addressOf(const Place& place)
{
    return QString::number(place.group ? place.group->address : place.terminal->address);
}

QString outputCount(const Place& place)
{
    return place.group ? QString::number(place.group->outputs.size()) : dash();
}

ReportSection terminals(const ReportSource& source)
{
    ReportSection section;
    section.heading = QStringLiteral("Terminals");
    ReportTable& table = section.table;
    const bool isRead = source.unit.has_value();
    table.titles = QStringList{QStringLiteral("Address"), QStringLiteral("Terminal")};
    table.titles += isRead ? QStringList{QStringLiteral("Kind"), QStringLiteral("Outputs"), QStringLiteral("Connected")}
                           : QStringList{QStringLiteral("Outputs")};
    table.shares = isRead ? QVector<int>{12, 40, 22, 12, 14} : QVector<int>{14, 70, 16};
    const QVector<Place> all = places(source.model);
    for (const Place& place : all) {
        ReportRow row{{cell(addressOf(place)), nameOf(place)}};
        if (isRead) {
            const bool isUnit = place.group && place.group->address == 0;
            const bool isConnected = isUnit || place.terminal != nullptr || place.group->connected;
            row.cells.append(cell(isUnit           ? QStringLiteral("head unit")
                                  : place.terminal ? classWord(*place.terminal)
                                                   : texts::classExecutive()));
            row.cells.append(cell(outputCount(place)));
            row.cells.append(cell(isConnected ? texts::wordYes().toLower() : texts::wordNo().toLower(),
                                  isConnected ? ReportText::Plain : ReportText::Strong));
        } else {
            row.cells.append(cell(outputCount(place)));
        }
        table.rows.append(row);
    }
    if (!isRead) {
        section.notes.append(QStringLiteral(
            "Address 0 is the head unit. Terminals without outputs, such as sensors, aren't kept in the file."));
    }
    return section;
}

// Outputs

QString scriptsOf(const RelayInformation& output)
{
    QStringList words;
    for (const ScriptInfoPtr& script : output.activatedScripts) {
        words.append(sentence::numbered(*script));
    }
    return words.isEmpty() ? dash() : words.join(QStringLiteral(", "));
}

ReportRow outputRow(const RelayInformation& output)
{
    constexpr quint8 noNumber = 255;
    const QString name = tidied(output.name);
    return {{cell(output.number == noNumber ? dash() : QString::number(output.number + 1)),
             cell(name.isEmpty() ? dash() : name),
             cell(output.startState ? output.startState->name.toLower() : texts::placeholderUnknown().toLower()),
             cell(output.returnStartState ? QStringLiteral("returns") : QStringLiteral("stays")),
             cell(scriptsOf(output), output.activatedScripts.isEmpty() ? ReportText::Quiet : ReportText::Plain)}};
}

ReportSection outputs(const RelayInfo& model)
{
    ReportSection section;
    section.heading = QStringLiteral("Outputs");
    section.table.titles = QStringList{QStringLiteral("No."), QStringLiteral("Output"), QStringLiteral("At start"),
                                       QStringLiteral("Afterwards"), QStringLiteral("Scripts")};
    section.table.shares = {7, 27, 12, 14, 40};
    const QList<GroupRelayPtr> groups = model.groups();
    for (const GroupRelayPtr& group : groups) {
        if (group->outputs.isEmpty()) {
            continue;
        }
        ReportRow title{{cell(english::capitalized(sentence::terminal(*group)), ReportText::Strong)}, true};
        section.table.rows.append(title);
        for (const RelayInformationPtr& output : qAsConst(group->outputs)) {
            section.table.rows.append(outputRow(*output));
        }
    }
    section.notes.append(QStringLiteral("\u201CReturns\u201D: the output goes back to its state at the start when "
                                        "a script ends. \u201CStays\u201D: it is left as the script left it."));
    return section;
}

// Scripts

/// The name of a script, if somebody gave it one, and what it does.
ReportCell wordsOf(const RelayInfo& model, const ScriptInfoPtr& script)
{
    const QString name = tidied(script->name);
    ReportCell words;
    if (!name.isEmpty() && name != texts::defaultScriptName()) {
        words.append({name, ReportText::Strong});
    }
    words.append({sentence::action(model, script), ReportText::Plain});
    return words;
}

ReportSection scripts(const RelayInfo& model)
{
    ReportSection section;
    section.heading = texts::wordScripts();
    section.table.shares = {7, 93};
    QVector<int> unused;
    const QList<ScriptInfoPtr> all = model.scripts();
    for (const ScriptInfoPtr& script : all) {
        if (!scriptRules::hasTrigger(*script)) {
            unused.append(script->number + 1);
            continue;
        }
        section.table.rows.append(
            {{cell(QString::number(script->number + 1), ReportText::Strong), wordsOf(model, script)}});
    }
    if (section.table.rows.isEmpty()) {
        section.notes.append(QStringLiteral("No script is in use."));
    } else if (!unused.isEmpty()) {
        std::sort(unused.begin(), unused.end());
        section.notes.append(QStringLiteral("Not in use: %1.").arg(english::ranges(unused).join(QStringLiteral(", "))));
    }
    return section;
}

} // namespace

ReportContent content(const ReportSource& source)
{
    ReportContent report;
    report.title = QStringLiteral("Site report");
    report.name = nameOf(source);
    report.date = dateOf(source.moment);
    report.sections = {head(source), terminals(source), outputs(source.model), scripts(source.model)};
    const QStringList faults = reportChecks(source.model, source.unit.has_value());
    if (!faults.isEmpty()) {
        ReportSection section;
        section.heading = QStringLiteral("Worth a look");
        section.items = faults;
        report.sections.append(section);
    }
    return report;
}

QString html(const ReportSource& source)
{
    return reportHtml(content(source));
}

QByteArray pdf(const ReportSource& source)
{
    return reportPdf(content(source), source.moment);
}

} // namespace siteReport
