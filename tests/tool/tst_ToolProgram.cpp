#include "ToolRun.h"

#include <QtTest>

/// What all commands have in common: the command line, the help, the two streams.
class tst_ToolProgram : public QObject
{
    Q_OBJECT

private slots:
    void withoutACommandItSaysWhereHelpIs();
    void anUnknownCommandIsBadInput();
    void anUnknownOptionIsBadInput();
    void aPortWithoutANameIsBadInput();
    void theHelpListsEveryCommand();
    void eachCommandHasHelpWithAnExample();
    void tooFewAndTooManyArgumentsAreBadInput();
    void progressIsOneLineOfATerminalAndNothingElsewhere();
};

void tst_ToolProgram::withoutACommandItSaysWhereHelpIs()
{
    const ToolRun run({});
    QCOMPARE(run.exitCode, ExitCode::BadInput);
    QVERIFY(run.results.isEmpty());
    QVERIFY(run.errors.contains(QStringLiteral("--help")));
}

void tst_ToolProgram::anUnknownCommandIsBadInput()
{
    const ToolRun run({QStringLiteral("reed")});
    QCOMPARE(run.exitCode, ExitCode::BadInput);
    QVERIFY(run.errors.contains(QStringLiteral("\"reed\"")));
}

void tst_ToolProgram::anUnknownOptionIsBadInput()
{
    for (const QStringList& line :
         {QStringList{QStringLiteral("--colour")},
          QStringList{QStringLiteral("check"), QStringLiteral("--colour"), QStringLiteral("a.cfg")}}) {
        const ToolRun run(line);
        QCOMPARE(run.exitCode, ExitCode::BadInput);
        QVERIFY2(run.errors.contains(QStringLiteral("colour")), qUtf8Printable(run.errors));
    }
}

void tst_ToolProgram::aPortWithoutANameIsBadInput()
{
    // As a script says it whose variable is empty: no other port may be taken for it.
    const QString file = QStringLiteral("no-file");
    QCOMPARE(ToolRun({QStringLiteral("read"), file, QStringLiteral("--port"), QString()}).exitCode, ExitCode::BadInput);
    QCOMPARE(ToolRun({QStringLiteral("read"), file, QStringLiteral("--port"), QStringLiteral("no-such-port"),
                      QStringLiteral("--simulated-unit")})
                 .exitCode,
             ExitCode::BadInput);
}

void tst_ToolProgram::theHelpListsEveryCommand()
{
    const ToolRun run({QStringLiteral("--help")});
    QCOMPARE(run.exitCode, ExitCode::Done);
    QVERIFY(run.errors.isEmpty());
    for (const Command& command : commands()) {
        QVERIFY2(run.results.contains(QStringLiteral("\n  ") + command.name + QLatin1Char(' ')),
                 qUtf8Printable(command.name));
    }
}

void tst_ToolProgram::eachCommandHasHelpWithAnExample()
{
    for (const Command& command : commands()) {
        const ToolRun run({command.name, QStringLiteral("--help")});
        QCOMPARE(run.exitCode, ExitCode::Done);
        QVERIFY2(run.results.contains(command.example), qUtf8Printable(run.results));
        QVERIFY(command.example.startsWith(QStringLiteral("hubn-tool ") + command.name));
    }
}

void tst_ToolProgram::tooFewAndTooManyArgumentsAreBadInput()
{
    for (const Command& command : commands()) {
        if (command.leastArguments > 0) {
            QCOMPARE(ToolRun({command.name}).exitCode, ExitCode::BadInput);
        }
        if (command.mostArguments < 100) {
            QStringList line{command.name};
            for (int count = 0; count <= command.mostArguments; ++count) {
                line.append(QStringLiteral("no-file"));
            }
            QCOMPARE(ToolRun(line).exitCode, ExitCode::BadInput);
        }
    }
}

void tst_ToolProgram::progressIsOneLineOfATerminalAndNothingElsewhere()
{
    for (const bool live : {true, false}) {
        QBuffer results;
        QBuffer errors;
        results.open(QIODevice::WriteOnly);
        errors.open(QIODevice::WriteOnly);
        {
            Console console(results, errors, live);
            console.progress(QStringLiteral("Reading"), 1, 4);
            console.progress(QStringLiteral("Reading"), 2, 4);
            console.result(QStringLiteral("read"));
        }
        QCOMPARE(results.data(), QByteArray("read\n"));
        QCOMPARE(errors.data(), live ? QByteArray("\r\033[KReading 25 %\r\033[KReading 50 %\r\033[K") : QByteArray());
    }
}

QTEST_GUILESS_MAIN(tst_ToolProgram)
#include "tst_ToolProgram.moc"
