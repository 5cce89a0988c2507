// Any bytes as the answer of a device or of a bootloader. A valid answer is no longer than what it was cut from, and
// neither the frame nor the request is changed by the look at it.

#include "firmware/protocol_boot.h"
#include "fuzz/fuzz.h"
#include "fuzz/mending.h"
#include "link/protocol_HUBN_NX_Q.h"

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maximum, unsigned seed)
{
    return fuzz::mutateWire(data, size, maximum, seed);
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes = fuzz::bytesOf(data, size);
    message received = protocol_HUBN_NX_Q::requestDeviceTime(9);
    received.setRawAnswer(bytes);
    for (const auto parse : {&protocol_HUBN_NX_Q::parseAnswer, &protocol_boot::parseAnswer}) {
        const message answer = parse(received);
        fuzz::demand(answer.parseStatus() != PacketNotParsed, QStringLiteral("no verdict"));
        fuzz::demand(answer.request() == received.request(), QStringLiteral("the request changed"));
        if (answer.isValid()) {
            fuzz::demand(answer.payload().size() < bytes.size(), QStringLiteral("more payload than bytes"));
        } else {
            fuzz::demand(answer.payload().isEmpty(), QStringLiteral("payload of an invalid answer"));
        }
    }

    // Stuffed and framed, the same bytes are an answer with themselves as its data.
    const QByteArray content = bytes.left(126); // the length byte is read as a signed one
    QByteArray frame = QByteArray::fromHex("c206010000") + '\0' + content;
    frame[4] = char(content.size() + 1);
    const int crc = protocol_HUBN_NX_Q::crc16(frame);
    frame.append(char(crc & 0xFF)).append(char(crc >> 8));
    received.setRawAnswer(protocol_HUBN_NX_Q::stuffBytes(frame));
    const message answer = protocol_HUBN_NX_Q::parseAnswer(received);
    fuzz::demand(answer.isValid() && answer.payload() == content,
                 QStringLiteral("an answer isn't read as it was made"));
    return 0;
}
