// Any text as packets that were saved from the packet logger: what is read comes back when it is written, and each
// packet has its words, whatever request it is said to answer.

#include "fuzz/fuzz.h"
#include "fuzz/mending.h"
#include "link/packetText.h"

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maximum, unsigned seed)
{
    return fuzz::mutateLines(data, size, maximum, seed);
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text = QString::fromUtf8(fuzz::bytesOf(data, size));
    int faultyLine = 0;
    const std::optional<QList<Packet>> packets = packettext::toPackets(text, &faultyLine);
    if (!packets) {
        fuzz::demand(faultyLine > 0 && faultyLine <= text.count(QLatin1Char('\n')) + 1,
                     QStringLiteral("a faulty line that isn't there"));
        return 0;
    }
    const QString written = packettext::fromPackets(*packets);
    const std::optional<QList<Packet>> again = packettext::toPackets(written);
    fuzz::demand(again && packettext::fromPackets(*again) == written, QStringLiteral("packets don't come back"));
    fuzz::demand(again->size() == packets->size(), QStringLiteral("packets are lost"));
    QByteArray request;
    for (const Packet& packet : *packets) {
        const bool isRequest = packet.direction == Packet::Request;
        fuzz::demand(!packettext::requestInWords(packet.bytes).isEmpty(), QStringLiteral("a request without words"));
        fuzz::demand(!packettext::answerInWords(packet.bytes, request).isEmpty(),
                     QStringLiteral("an answer without words"));
        request = isRequest ? packet.bytes : request;
    }
    return 0;
}
