#pragma once

#include "firmware/Loading.h"

#include <QLabel>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>

inline QString fileName()
{
    return QStringLiteral("/tmp/100%/image.crypt");
}

enum class Reply
{
    Good,
    GoodToo,
    WriteError,
    Refused,
    Damaged,
    Silent,
    PortError
};

/// What comes back for a request.
inline message answerTo(const message& request, Reply reply = Reply::Good)
{
    message answer = request;
    answer.setParseStatus(reply == Reply::Silent || reply == Reply::PortError ? PacketNotParsed
                          : reply == Reply::Damaged                           ? PacketBadCrc
                                                                              : PacketOk);
    switch (reply) {
    case Reply::Good:
        answer.setAnswerCode(0);
        break;
    case Reply::GoodToo:
        answer.setAnswerCode(1);
        break;
    case Reply::WriteError:
        answer.setAnswerCode(2);
        break;
    case Reply::Silent:
        answer.markTimedOut();
        break;
    case Reply::PortError:
        answer.markPortFailed();
        break;
    default:
        break;
    }
    return answer;
}

/// A dialog on the screen with a record of what it sends and says.
class Bench
{
public:
    explicit Bench(int imageSize = 300, quint8 address = 4, int baudrate = 9600, const QString& file = fileName())
        : dialog(new Loading)
    {
        QObject::connect(dialog, &Loading::sig_SendMessage, dialog, [this](const message& mess) { sent.append(mess); });
        QObject::connect(dialog, &Loading::sig_SendResultOperation, dialog,
                         [this](const QString& text) { results.append(text); });
        dialog->setParameters(address, baudrate, file, QByteArray(imageSize, 'i'));
        dialog->show();
    }

    ~Bench()
    {
        delete dialog;
    }
    Q_DISABLE_COPY_MOVE(Bench)

    void reply(Reply kind)
    {
        dialog->sl_receiveMessage(answerTo(sent.constLast(), kind));
    }

    /// Replies well until a request of this type has been sent.
    void runTo(int bootType)
    {
        while (sent.constLast().bootType() != bootType) {
            reply(Reply::Good);
        }
    }

    /// Replies like this until nothing more is sent.
    void replyToAll(Reply kind)
    {
        int before = 0;
        while (dialog != nullptr && sent.size() != before) {
            before = sent.size();
            reply(kind);
        }
    }

    QProgressBar* bar() const
    {
        return dialog->findChild<QProgressBar*>(QStringLiteral("progressBar"));
    }
    QPushButton* abortButton() const
    {
        return dialog->findChild<QPushButton*>(QStringLiteral("ButtonAbort"));
    }
    QPushButton* repeatButton() const
    {
        return dialog->findChild<QPushButton*>(QStringLiteral("ButtonRepeat"));
    }
    QLabel* fileLabel() const
    {
        return dialog->findChild<QLabel*>(QStringLiteral("labelFileName"));
    }

    void compareFailed(const QString& text) const
    {
        QVERIFY(bar()->font().bold());
        QCOMPARE(bar()->font().family(), QStringLiteral("Calibri"));
        QCOMPARE(bar()->font().pointSize(), 12);
        QCOMPARE(bar()->text(), text);
        QCOMPARE(bar()->value(), bar()->maximum());
        QCOMPARE(abortButton()->text(), QStringLiteral("Close"));
        QVERIFY(!repeatButton()->isHidden());
        QVERIFY(dialog->isVisible());
    }

    QPointer<Loading> dialog;
    QList<message> sent;
    QStringList results;
};

inline QString withFile(const char* text)
{
    return QString::fromLatin1(text) + QLatin1Char('\n') + fileName();
}
