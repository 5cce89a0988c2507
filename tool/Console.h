#pragma once

#include "tool/ExitCode.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QTextStream>

#include <optional>

class QIODevice;

/// Where a command tells what it has to tell: results on one stream, all else on the other. And where it reads what
/// somebody types or another program writes.
///
/// main() owns the one of the program, over the standard streams; a test has one over buffers. One thread.
class Console
{
public:
    /// With `live` a terminal reads the errors: progress is shown there, on one line that is written anew.
    Console(QIODevice& results, QIODevice& errors, bool live);
    ~Console();
    Q_DISABLE_COPY_MOVE(Console)

    /// What is read, say the standard input, which has to live as long. Without it there is nothing to read.
    void setInput(QIODevice& input, bool isTyped);

    /// Whether a person types what is read, and has to be told when to.
    bool isInputTyped() const;

    /// Waits for a line of the input; nothing once it has ended, or if somebody wishes the program to end.
    std::optional<QString> readLine();

    void setQuiet(bool on); ///< no notes, no progress
    void setJson(bool on);

    /// Whether results go out as one JSON document for each command, and not as lines.
    bool isJson() const;

    void result(const QString& line);

    /// The command's document, which finish() puts out.
    void result(const QJsonDocument& document);

    /// What is known or done already, for the document of a command that ends before it has one.
    void noteSoFar(const QJsonObject& facts);

    /// Once, when the command is over. As JSON a command that failed has a document too: an object with what was done
    /// so far, "error" with the last error that was told, and "errors" with those before it, if there are any.
    void finish(ExitCode exitCode);

    /// A line beside the result.
    void note(const QString& line);

    /// Why something wasn't done; told also when quiet.
    void error(const QString& line);

    /// Whether all results went out; to be asked at the end.
    bool isWhole();

    /// How far long work is. A maximum of 0 says that nobody knows.
    void progress(const QString& text, int value, int maximum);
    void endProgress();

private:
    QTextStream resultStream;
    QTextStream errorStream;
    QIODevice* inputDevice = nullptr;
    bool isTypedInput = false;
    const bool isLive;
    bool isQuiet = false;
    bool hasJson = false;
    std::optional<QJsonDocument> resultDocument;
    QJsonObject soFar;
    QStringList toldErrors;
    QString shownProgress;
};
