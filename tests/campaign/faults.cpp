#include "campaign/Operation.h"
#include "link/endProcess.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QTextStream>

namespace
{

/// The part K of N, "3/40".
struct Part
{
    int number = 0;
    int count = 1;

    static Part fromText(const QString& text)
    {
        Part part;
        part.number = text.section(QLatin1Char('/'), 0, 0).toInt();
        part.count = qMax(1, text.section(QLatin1Char('/'), 1).toInt());
        return part;
    }
};

/// The steps of which two runs agree: on a busy machine one may have had to ask something again.
QVector<Step> learnSteps(Operation& operation)
{
    constexpr int runs = 20;
    QVector<Step> former;
    for (int count = 0; count < runs; ++count) {
        const QVector<Step> steps = stepsOf(operation.learn());
        if (!steps.isEmpty() && steps == former) {
            return steps;
        }
        former = steps;
    }
    return {};
}

/// One line, its fields parted by tabulators: number, promise, verdict, ms, name, what is told.
void runCase(Operation& operation, const FaultCase& faultCase, int number, QTextStream& out)
{
    QElapsedTimer clock;
    clock.start();
    Outcome outcome = operation.run(faultCase);
    // A busy machine may have ended it before its fault came.
    for (int again = 0; again < 5 && outcome.verdict == Outcome::Unmet; ++again) {
        outcome = operation.run(faultCase);
    }
    const QString what = outcome.verdict == Outcome::Right ? QString() : outcome.what.simplified();
    out << QStringList{QString::number(number),
                       FaultCase::promiseName(faultCase.promise),
                       Outcome::verdictName(outcome.verdict),
                       QString::number(clock.elapsed()),
                       faultCase.name,
                       what}
               .join(QLatin1Char('\t'))
        << Qt::endl;
}

int run(const QCommandLineParser& commandLine, QTextStream& out)
{
    const std::unique_ptr<Operation> operation = Operation::make(commandLine.positionalArguments().value(0));
    if (operation == nullptr) {
        out << "there is no such operation\n";
        return 2;
    }
    const QVector<Step> steps = learnSteps(*operation);
    if (steps.isEmpty()) {
        out << "without faults it doesn't end well\n";
        return 1;
    }
    const QVector<FaultCase> cases =
        faultCases(steps, commandLine.value(QStringLiteral("seed")).toUInt(), operation->readsLogOnly());
    out << "cases\t" << cases.size() << "\tsteps\t" << steps.size() << Qt::endl;
    if (commandLine.isSet(QStringLiteral("case"))) {
        const int number = commandLine.value(QStringLiteral("case")).toInt();
        if (number < 0 || number >= cases.size()) {
            return 2;
        }
        runCase(*operation, cases.at(number), number, out);
        return 0;
    }
    const Part part = Part::fromText(commandLine.value(QStringLiteral("part")));
    for (int number = part.number; number < cases.size(); number += part.count) {
        runCase(*operation, cases.at(number), number, out);
    }
    return 0;
}

} // namespace

/// Runs cases of the fault campaign, one after the other: those of an operation whose number leaves the remainder K
/// when divided by N. faults.py runs many such programs side by side and sums up.
int main(int argc, char* argv[])
{
    int exitCode = 0;
    {
        const QApplication application(argc, argv);
        QCoreApplication::setApplicationName(QStringLiteral("hubn-tool"));
        QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
        QCommandLineParser commandLine;
        commandLine.addOptions({{QStringLiteral("part"), {}, QStringLiteral("K/N"), QStringLiteral("0/1")},
                                {QStringLiteral("case"), {}, QStringLiteral("number")},
                                {QStringLiteral("seed"), {}, QStringLiteral("number"), QStringLiteral("1")}});
        commandLine.addPositionalArgument(QStringLiteral("operation"), {});
        commandLine.process(application);
        const QTemporaryDir folder; // the programs keep files beside them
        QTextStream out(stdout);
        exitCode = folder.isValid() && QDir::setCurrent(folder.path()) ? run(commandLine, out) : 1;
        QDir::setCurrent(QDir::rootPath());
    }
    endProcess(exitCode);
}
