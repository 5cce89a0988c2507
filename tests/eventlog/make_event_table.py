#!/usr/bin/env python3
"""Writes events.tsv: records of a log, each with the rows that it has to give, all eighteen fields of them.

The rows are worked out here from the format of the record alone, in a program of its own, so that the table can judge the
decoder. Run it in this folder after a change; the table is committed beside it.

A line is one of
    C <line of the catalogue of models>
    R <name of the case> <record in hexadecimal>
    E <number> <sortDateTime> <dateInDays> <timeInMinute> <class> <version> <type> <characteristic> <address> <channel>
      <code> <date> <time> <source> <signal> <noise> <event> <details>
with tabs between the fields, and a line feed in a text written as \\n. The E lines belong to the R line above them.
"""

import datetime
import random

CATALOGUE = [
    ("HUBN-NX-Q", 0x0, 0x6, 0x1A, 0x1F),
    ("KV-NX", 0x1, 0x1, 0x41, 0x10),
    ("Dorn-NX(single-channel)", 0x1, 0x4, 0x31, 0x10),
    ("Dorn-NX(two-channel)", 0x1, 0x4, 0x31, 0x20),
    ("Second of its numbers", 0x1, 0x1, 0x41, 0x10),
    ("Moriz-NX", 0x1, 0x1, 0x10, 0x20),
    ("Haldeon-NX", 0x2, 0x1, 0x41, 0x20),
    ("GHJ-NX", 0x2, 0x1, 0x21, 0x40),
    ("GHT-NX", 0x2, 0x1, 0x13, 0x40),
    ("PNB-NX", 0x3, 0x1, 0x30, 0x10),
    ("XLC-NX", 0x3, 0x3, 0x34, 0x10),
    ("PNB-NX vers.1", 0x3, 0x4, 0x30, 0x10),
    ("Termia-NX(single-channel)", 0x4, 0x1, 0x15, 0x11),
    ("Termia-NX(two-channel)", 0x4, 0x1, 0x15, 0x23),
    ("Tallio-NX(single-channel)", 0x4, 0x1, 0x20, 0x11),
    ("Tallio-NX(two-channel)", 0x4, 0x1, 0x20, 0x23),
    ("%1 100 %2", 0x1, 0x9, 0x77, 0x20),
    ("(all in brackets)", 0x1, 0x9, 0x78, 0x20),
    ("Negative class", 0xF9, 0x1, 0x01, 0x20),
]

UNIT = (0x0, 0x6, 0x1A, 0x1F)
LOOP = (0x1, 0x1, 0x10, 0x20)
LOOP4 = (0x1, 0xA, 0x5C, 0x40)
OUTPUT = (0x2, 0x1, 0x41, 0x20)
OUTPUT4 = (0x2, 0xC, 0x41, 0x40)
PANIC = (0x3, 0x1, 0x30, 0x10)
PANIC4 = (0x3, 0x4, 0x30, 0x10)
BUTTONS = (0x3, 0x3, 0x34, 0x10)
HEAT1 = (0x4, 0x1, 0x15, 0x11)
HEAT2 = (0x4, 0x1, 0x15, 0x23)
COUNTER1 = (0x4, 0x1, 0x20, 0x11)
COUNTER2 = (0x4, 0x1, 0x20, 0x23)
ANALOG = (0x4, 0x2, 0x66, 0x40)

USUAL_TIME = (2020, 9, 25, 14, 37)

# ---- Encoding: the arguments stand in the record as given, the time as BCD --------------------------------------------


def bcd(value):
    return value // 10 << 4 | value % 10


def record(terminal, code, address, data, time=USUAL_TIME, signal=50, noise=10):
    year, month, day, hour, minute = time
    return raw(bcd(year - 2000), bcd(month), bcd(day), bcd(hour), bcd(minute), terminal, code, address, data, signal, noise)


def raw(year, month, day, hour, minute, terminal, code, address, data, signal=50, noise=10):
    kind, version, model, characteristic = terminal
    head = [
        (year >> 7 & 1) << 7 | minute,
        (year >> 5 & 3) << 6 | hour,
        (year >> 3 & 3) << 6 | day,
        (year & 7) << 5 | month,
        (kind & 15) << 4 | version,
        model,
        characteristic,
        signal,
        noise,
        code & 255,
        address,
    ]
    return bytes(head + (list(data) + [0] * 5)[:5])


# ---- What the rows have to be ------------------------------------------------------------------------------------------

UNIT_BITS = [
    (7, "RTR mode is enabled", "RTR mode is disabled"),
    (6, "Case of terminal is opened", "Case of terminal is closed"),
    (3, "Binding mode is enabled", "Binding mode is disabled"),
    (2, "Input 2 HUBN is opened", "Input 2 HUBN is closed"),
    (1, "Input 1 HUBN is opened", "Input 1 HUBN is closed"),
]
TERMINAL_BITS = [
    (6, "Case of terminal is opened", "Case of terminal is closed"),
    (5, "Main power fault", "Restored main power"),
    (4, "Backup power fault", "Restored backup power"),
    (3, "Disconnection", "\u0421onnection"),
    (2, "Detectivity fault / special power fault", "Restored detectivity"),
    (1, "Fatal error", "Restored detectivity"),
]
MODE_BITS = [
    (7, "Light indication is enabled", "Light indication is disabled"),
    (6, "Recognition ON", "Recognition OFF"),
    (5, "Sound indication is enabled", "Sound indication is disabled"),
    (4, "Sound indication ON", "Sound indication OFF"),
    (3, "Encryption ON", "Encryption OFF"),
    (0, "Security ON", "Security OFF"),
]
LOOP_STATES = {0: "Norm", 1: "Alarm (fire)", 2: "Short of loop", 3: "Tamper of loop"}
OUTPUT_STATES = {0: "OFF", 1: "ON", 2: "0.5 Hz", 3: "1 Hz", 4: "2 Hz", 5: "4 Hz"}
ANALOG_STATES = {
    0: "Norm", 1: "High level alarm", 2: "Low level alarm", 3: "Detector reset", 4: "Tamper",
    5: "Detector power fault", 6: "Ground short", 7: "Channel short", 8: "Data corrupted", 9: "Data corrupted",
    10: "Data corrupted", 11: "Temperature outside",
}


def joined(parts):
    return "".join(part + "; " for part in parts)


def unit_details(status):
    parts = [text for bit, text, _ in UNIT_BITS if bit > 2 and status >> bit & 1]
    inputs = status >> 1 & 3
    parts += {0: [], 1: ["Input 1 HUBN is opened"], 2: ["Input 2 HUBN is opened"],
              3: ["Inputs HUBN 1 and 2 is opened"]}[inputs]
    return joined(parts)


def terminal_details(status):
    return joined(text for bit, text, _ in TERMINAL_BITS if status >> bit & 1)


def mode_details(mode):
    parts = []
    for bit, on, off in MODE_BITS:
        if bit == 3:
            parts += [] if mode >> 3 & 1 else [off]
        elif mode >> bit & 1:
            parts.append(on)
    return joined(parts)


def changes(bits, old, new):
    texts = []
    for bit, on, off in bits:
        before, after = old >> bit & 1, new >> bit & 1
        if before != after:
            texts.append(on if after else off)
    return texts or ["No changes"]


def button_word(count):
    if count % 10 == 1 and count not in range(10, 20):
        return " button"
    return " buttons"


def is_panic(terminal):
    return terminal in ((3, 1, 0x30, 0x10), (3, 4, 0x30, 0x10))


def channel_text(terminal, channel, state, long):
    kind = terminal[0]
    if kind == 2 and channel >= 3 and terminal in ((2, 1, 0x21, 0x40), (2, 1, 0x13, 0x40)):
        kind = 1
    if kind == 3:
        if is_panic(terminal):
            return ""
        if state == 0:
            return "Reset pressed buttons" if long else ""
        return ("Pressing " if long else "Pressed ") + str(state) + button_word(state)
    if terminal in ((4, 1, 0x20, 0x11), (4, 1, 0x20, 0x23)):
        if long:
            return ""
        return ["", "Counter above threshold 1", "Counter above threshold 2", "Counter above thresholds 1 and 2"][state & 3]
    states = {1: LOOP_STATES, 2: OUTPUT_STATES, 4: ANALOG_STATES}.get(kind)
    if states is None:
        return "Unknown class of channel(%d)" % kind
    if state & 15 not in states:
        return " Unknown(%d)" % state
    return "" if not long and state & 15 == 0 else states[state & 15]


def five(data):
    return " ".join("%02x" % byte for byte in data)


def celsius(high, low, channel):
    value = ((high >> 4 & 7) * 10 + (high & 15)) * 100 + (low >> 4) * 10 + (low & 15)
    return "%d\u00b0C (channel %d)" % (-value if high & 0x80 else value, channel)


def source_start(terminal, address):
    if address == 0:
        return "HUBN-NX-Q"
    name = "%x%x %02x %02x" % terminal
    for row in CATALOGUE:
        if row[1:] == terminal:
            name = row[0].split("(")[0]
            break
    return "%s (\u2116%d" % (name, address)


def power_up(terminal, address, data):
    if address == 0:
        return ["Turning on the HUBN"], unit_details(data[1])
    details = terminal_details(data[0]) + mode_details(data[1])
    nibbles = [data[2] & 15, data[2] >> 4, data[3] & 15, data[3] >> 4]
    for channel in range(1, min(terminal[3] >> 4, 4) + 1):
        text = channel_text(terminal, channel, nibbles[channel - 1], False)
        if text:
            details += ("; " if channel > 1 else "") + "Channel %d: %s" % (channel, text)
    return ["Turning on the terminal"], details


def channel_event(terminal, channel, data):
    kind = terminal[0]
    text = channel_text(terminal, channel, data[0], True)
    if kind in (1, 2):
        return [text], ""
    if is_panic(terminal):
        names = ["button 1(Alarm)", "button 2(Arm)", "button 3(Disarm)", "button 4(test)"]
        pressed = joined(name for bit, name in enumerate(names) if data[1] >> bit & 1)
        return [("Long" if data[1] & 0x80 else "Short") + " pressing " + pressed], ""
    if kind == 3:
        if data[0] == 0:
            return [text], ""
        nibbles = [nibble for byte in data[1:5] for nibble in (byte & 15, byte >> 4)]
        return [text], "Pressed " + "".join("%02x " % nibble for nibble in nibbles[: min(data[0], 8)])
    if terminal == HEAT1:
        return [text], celsius(data[1], data[2], 1)
    if terminal == HEAT2:
        return [text], celsius(data[1], data[2], 1) + "\n" + celsius(data[3], data[4], 2)
    if kind == 4:
        value = int.from_bytes(data[1:5], "little")
        now, before = data[0] & 3, data[0] >> 2 & 3
        texts = []
        for bit, number in ((0, 1), (1, 2)):
            if (now ^ before) >> bit & 1:
                texts.append("Counter %s threshold %d" % ("above" if now >> bit & 1 else "below", number))
        return texts or ["No changes"], "{:,}".format(value).replace(",", " ")
    return [text], five(data)


def rows_of(rec):
    year = (rec[0] & 0x80) + (rec[1] >> 6) * 32 + (rec[2] >> 6) * 8 + (rec[3] >> 5)
    number = lambda byte: (byte >> 4) * 10 + byte % 16
    minute, hour, day, month = number(rec[0] & 0x7F), number(rec[1] & 0x3F), number(rec[2] & 0x3F), number(rec[3] & 0x1F)
    try:
        date = datetime.date(2000 + number(year), month, day)
        days, date_text = (date - datetime.date(2000, 1, 1)).days, date.strftime("%d.%m.%Y")
    except ValueError:
        days, date_text = 0, "Incorrect date"
    if hour < 24 and minute < 60:
        minutes, time_text = hour * 24 + minute, "%02d:%02d" % (hour, minute)
    else:
        minutes, time_text = 65536 - 25, "Incorrect time"

    kind = rec[4] >> 4
    kind += 240 if kind > 7 else 0
    terminal = (kind, rec[4] & 15, rec[5], rec[6])
    code = rec[9] - 256 if rec[9] > 127 else rec[9]
    address, data = rec[10], rec[11:16]

    source, channel = source_start(terminal, address), 0
    if code == 0:
        source += ")" if address else ""
        events, details = power_up(terminal, address, data)
    elif code == 1:
        channel = 1 if kind == 3 else (data[0] >> 4) % 4 + 1
        source += ", channel %d)" % channel
        events, details = channel_event(terminal, channel, data)
    elif code == 2 and address == 0:
        events, details = changes(UNIT_BITS, data[0], data[1]), unit_details(data[1])
    elif code == 2:
        source += ")"
        events, details = changes(TERMINAL_BITS, data[0], data[1]), terminal_details(data[1])
    elif code == 3:
        source += ")"
        events, details = changes(MODE_BITS, data[0], data[1]), mode_details(data[1])
    else:
        source += ")"
        events, details = ["Unknown event (%d)" % code], five(data)

    return [(len(events) - i, days * 10000 + minutes, days, minutes) + terminal
            + (address, channel, rec[9], date_text, time_text, source, rec[7], rec[8], event, details)
            for i, event in enumerate(events)]


# ---- The cases ---------------------------------------------------------------------------------------------------------

cases = []


def case(name, rec):
    cases.append((name, rec))


def head_unit_cases():
    for status in [0x00, 0x80, 0x40, 0x08, 0x06, 0x04, 0x02, 0xCE, 0x31, 0xFF, 0x8A, 0x44]:
        case("unit turned on, status %02x" % status, record(UNIT, 0, 0, [0xFF, status, 0xFF, 0xFF]))
    for bit in range(8):
        case("unit status bit %d set" % bit, record(UNIT, 2, 0, [0, 1 << bit]))
        case("unit status bit %d cleared" % bit, record(UNIT, 2, 0, [1 << bit, 0]))
    for old, new in [(0, 0), (0x06, 0x06), (0x31, 0), (0, 0x31), (0, 0x06), (0x06, 0), (0x02, 0x04), (0, 0xFF), (0xFF, 0),
                     (0xCE, 0x31), (0x48, 0x86)]:
        case("unit status %02x to %02x" % (old, new), record(UNIT, 2, 0, [old, new]))
    case("mode change of the unit has an end of bracket only", record(UNIT, 3, 0, [0x08, 0x88]))
    case("channel of the unit has an end of bracket only", record(UNIT, 1, 0, [0x21, 1, 2, 3, 4]))
    case("loop at address 0", record(LOOP, 1, 0, [0x11]))
    case("unknown event of the unit has an end of bracket only", record(UNIT, 9, 0, [1, 2, 3, 4, 5]))
    case("another class at address 0 is the unit", record(LOOP, 0, 0, [0x7E, 0x80]))


def terminal_status_cases():
    for bit in range(8):
        case("terminal status bit %d set" % bit, record(LOOP, 2, 7, [0, 1 << bit]))
        case("terminal status bit %d cleared" % bit, record(LOOP, 2, 7, [1 << bit, 0]))
    for old, new in [(0, 0), (0x7E, 0x7E), (0x81, 0), (0, 0x81), (0, 0xFF), (0xFF, 0), (0x55, 0x2A), (0x40, 0xC1)]:
        case("terminal status %02x to %02x" % (old, new), record(OUTPUT, 2, 31, [old, new]))
    for bit in range(8):
        case("mode bit %d set" % bit, record(OUTPUT, 3, 12, [0x08 & ~(1 << bit), 0x08 | 1 << bit]))
        case("mode bit %d cleared" % bit, record(OUTPUT, 3, 12, [0x08 | 1 << bit, 0x08 & ~(1 << bit)]))
    for old, new in [(0, 0), (0x08, 0x08), (0x08, 0x0E), (0xFF, 0), (0, 0xFF), (0x09, 0xF0), (0xF1, 0x08)]:
        case("mode %02x to %02x" % (old, new), record(LOOP, 3, 200, [old, new]))


def power_up_cases():
    for bit in range(8):
        case("terminal turned on, status bit %d" % bit, record(LOOP, 0, 5, [1 << bit, 0x08]))
    for mode in [0x00, 0x08, 0x0E, 0x88, 0x48, 0x28, 0x18, 0x09, 0xF9, 0xFF, 0x06]:
        case("terminal turned on, mode %02x" % mode, record(LOOP, 0, 5, [0, mode]))
    for state in range(16):
        states = state | state << 4
        case("loops in state %d at power-up" % state, record(LOOP4, 0, 5, [0, 8, states, states]))
        case("outputs in state %d at power-up" % state, record(OUTPUT4, 0, 5, [0, 8, states, states]))
        case("four-channel outputs in state %d at power-up" % state,
             record((2, 1, 0x21, 0x40), 0, 5, [0, 8, states, states]))
        case("analog inputs in state %d at power-up" % state, record(ANALOG, 0, 5, [0, 8, states, states]))
        case("counters in state %d at power-up" % state, record(COUNTER2, 0, 5, [0, 8, states, states]))
        case("%d buttons at power-up" % state, record((3, 3, 0x34, 0x40), 0, 5, [0, 8, states, states]))
    for channels in range(16):
        case("%d channels at power-up" % channels, record((1, 2, 0x33, channels << 4 | 7), 0, 9, [0, 8, 0x21, 0x13]))
    case("second channel alone at power-up", record(LOOP4, 0, 5, [0, 8, 0x10, 0]))
    case("fourth channel alone at power-up", record(LOOP4, 0, 5, [0x40, 0, 0, 0x30]))
    case("panic button at power-up", record(PANIC, 0, 5, [0, 8, 0x11]))
    for kind in [0, 5, 6, 7, 8, 9, 15]:
        case("class %d at power-up" % kind, record((kind, 1, 2, 0x20), 0, 5, [0, 8, 0x10]))


def channel_cases():
    for state in list(range(16)) + [0x10, 0x21, 0x32, 0x43, 0x84, 0xFF]:
        case("loop state %02x" % state, record(LOOP, 1, 7, [state, 1, 2, 3, 4]))
        case("output state %02x" % state, record(OUTPUT, 1, 7, [state, 1, 2, 3, 4]))
    for terminal in [(2, 1, 0x21, 0x40), (2, 1, 0x13, 0x40), (2, 2, 0x21, 0x40), (2, 1, 0x22, 0x40), (2, 1, 0x13, 0x20)]:
        for channel in range(4):
            for state in (1, 3, 5):
                case("output %02x %02x %02x channel %d state %d" % (terminal[1:] + (channel + 1, state)),
                     record(terminal, 1, 7, [channel << 4 | state]))
    for buttons in list(range(16)) + [0x80, 0x81, 0x8F, 0x70]:
        case("panic buttons %02x" % buttons, record(PANIC, 1, 7, [0x35, buttons, 3, 4, 5]))
    case("panic button of version 4", record(PANIC4, 1, 7, [0, 0x82]))
    case("no panic button: version 2", record((3, 2, 0x30, 0x10), 1, 7, [1, 0x82]))
    case("no panic button: characteristic", record((3, 1, 0x30, 0x20), 1, 7, [1, 0x82]))
    for count in [0, 1, 2, 3, 4, 5, 7, 8, 9, 10, 11, 12, 13, 14, 19, 20, 21, 22, 23, 24, 31, 32, 33, 34, 41, 42, 43, 44, 100,
                  101, 111, 112, 121, 122, 123, 124, 133, 144, 255]:
        case("%d buttons" % count, record(BUTTONS, 1, 7, [count, 0x21, 0x43, 0x65, 0x87]))
    for kind in [0, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15]:
        case("class %d" % kind, record((kind, 1, 2, 0x20), 1, 7, [0x31, 0xAB, 0, 0x0F, 0xFF]))
    case("class 9 in the catalogue", record((9, 1, 1, 0x20), 1, 7, [1]))


def analog_cases():
    for state in list(range(16)) + [0x3B, 0x1C, 0xF0]:
        case("temperature terminal state %02x" % state, record(HEAT1, 1, 7, [state, 0x00, 0x25]))
    for high, low in [(0, 0), (0x80, 0), (0x80, 0x18), (0x01, 0x05), (0x81, 0x99), (0x7F, 0xFF), (0xFF, 0xFF), (0x12, 0x34)]:
        case("temperature %02x %02x" % (high, low), record(HEAT1, 1, 7, [0, high, low, 0x12, 0x34]))
        case("two temperatures %02x %02x" % (high, low), record(HEAT2, 1, 7, [0x10, 0x00, 0x21, high, low]))
    for states in range(16):
        case("counter before and now %x" % states, record(COUNTER1, 1, 7, [states, 0x10]))
    for value in [0, 1, 12, 999, 1000, 1001, 99999, 100000, 999999, 1000000, 1234567, 4294967295]:
        case("counter value %d" % value, record(COUNTER2, 1, 7, [0x14] + list(value.to_bytes(4, "little"))))
    for terminal in [ANALOG, (4, 2, 0x15, 0x11), (4, 1, 0x15, 0x12), (4, 1, 0x20, 0x12)]:
        case("other analog terminal %02x %02x %02x" % terminal[1:], record(terminal, 1, 7, [0x21, 0x40, 0xE2, 0x01, 0]))


def time_cases():
    times = [(2000, 1, 1, 0, 0), (2000, 2, 29, 23, 59), (2020, 9, 25, 14, 0), (2020, 9, 25, 13, 59), (2099, 12, 31, 9, 9),
             (2047, 7, 4, 20, 20), (2064, 8, 8, 10, 10), (2031, 3, 31, 1, 1), (2023, 12, 31, 23, 59), (2008, 10, 10, 0, 1)]
    for time in times:
        case("time %04d-%02d-%02d %02d:%02d" % time, record(LOOP, 1, 7, [1], time))
    for name, args in [
        ("month 0", (0x20, 0x00, 0x01, 0x00, 0x00)), ("month 13", (0x20, 0x13, 0x01, 0x00, 0x00)),
        ("day 0", (0x20, 0x01, 0x00, 0x00, 0x00)), ("day 32", (0x20, 0x01, 0x32, 0x00, 0x00)),
        ("30 February", (0x20, 0x02, 0x30, 0x12, 0x12)), ("29 February of no leap year", (0x21, 0x02, 0x29, 0x12, 0x12)),
        ("31 April", (0x21, 0x04, 0x31, 0x12, 0x12)), ("hour 24", (0x20, 0x01, 0x01, 0x24, 0x00)),
        ("minute 60", (0x20, 0x01, 0x01, 0x00, 0x60)), ("nothing possible", (0xFF, 0x1F, 0x3F, 0x3F, 0x7F)),
        ("hexadecimal hour is read as 20", (0x20, 0x01, 0x01, 0x1A, 0x00)),
        ("hexadecimal minute is read as 55", (0x20, 0x01, 0x01, 0x00, 0x4F)),
        ("hexadecimal month is read as 12", (0x20, 0x0C, 0x01, 0x00, 0x00)),
        ("hexadecimal year is read as 2165", (0xFF, 0x12, 0x31, 0x23, 0x59)),
        ("year byte 80", (0x80, 0x01, 0x01, 0x00, 0x00)), ("year byte 60", (0x60, 0x01, 0x01, 0x00, 0x00)),
        ("year byte 18", (0x18, 0x01, 0x01, 0x00, 0x00)), ("year byte 07", (0x07, 0x01, 0x01, 0x00, 0x00)),
        ("all zero", (0, 0, 0, 0, 0)),
    ]:
        case(name, raw(*args, LOOP, 1, 7, [1]))


def source_cases():
    for name, number in [("known", (1, 1, 0x41, 0x10)), ("bracketed", (1, 4, 0x31, 0x10)), ("bracketed two", (1, 4, 0x31, 0x20)),
                         ("unknown", (1, 1, 0x42, 0x0A)), ("unknown high", (7, 15, 0xFF, 0xFE)), ("place markers", (1, 9, 0x77, 0x20)),
                         ("only brackets", (1, 9, 0x78, 0x20)), ("negative class unknown", (8, 0, 0, 0x20))]:
        for code in (0, 1, 2, 3, 4, 0x7F, 0x80, 0xFF):
            case("source %s, code %02x" % (name, code), record(number, code, 7, [1, 2, 3, 4, 5]))
    for address in (1, 31, 32, 128, 254, 255):
        case("address %d" % address, record(LOOP, 1, address, [1]))
    for signal, noise in ((0, 0), (255, 1), (128, 255)):
        case("signal %d noise %d" % (signal, noise), record(LOOP, 1, 7, [1], signal=signal, noise=noise))
    case("worked example", bytes.fromhex("375425091141" "10320A010721" "00000000"))


def random_cases():
    dice = random.Random(20200925)
    terminals = [row[1:] for row in CATALOGUE] + [LOOP4, OUTPUT4, ANALOG]
    for number in range(200):
        kind = dice.choice(terminals)
        case("random %d" % number,
             raw(bcd(dice.randrange(100)), bcd(dice.randint(1, 12)), bcd(dice.randint(1, 31)), bcd(dice.randrange(24)),
                 bcd(dice.randrange(60)), kind, dice.choice([0, 1, 1, 1, 2, 2, 3, dice.randrange(256)]),
                 dice.choice([0, dice.randrange(1, 256)]), [dice.randrange(256) for _ in range(5)], dice.randrange(256),
                 dice.randrange(256)))


def main():
    for make in (head_unit_cases, terminal_status_cases, power_up_cases, channel_cases, analog_cases, time_cases,
                 source_cases, random_cases):
        make()
    with open("events.tsv", "w", encoding="utf-8", newline="\n") as table:
        for row in CATALOGUE:
            table.write("C\t%s; 0x%X; 0x%X; 0x%X; 0x%X\n" % row)
        for name, rec in cases:
            table.write("R\t%s\t%s\n" % (name, rec.hex()))
            for row in rows_of(rec):
                table.write("E\t" + "\t".join(str(field).replace("\n", "\\n") for field in row) + "\n")
    print(len(cases), "records")


if __name__ == "__main__":
    main()
