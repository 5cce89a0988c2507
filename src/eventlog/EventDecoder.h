#pragma once

#include "eventlog/EventInfo.h"

#include <QByteArray>
#include <QList>

class Device;

/// Decodes one record of at least logRecordSize bytes into the rows that it gives, at least one, and appends them.
///
/// | Byte  | Bits | Meaning                                                       |
/// |-------|------|---------------------------------------------------------------|
/// | 0     | 7    | bit 7 of the year byte                                        |
/// | 0     | 6-0  | minutes, BCD                                                  |
/// | 1     | 7-6  | bits 6-5 of the year byte                                     |
/// | 1     | 5-0  | hours, BCD                                                    |
/// | 2     | 7-6  | bits 4-3 of the year byte                                     |
/// | 2     | 5-0  | day, BCD                                                      |
/// | 3     | 7-5  | bits 2-0 of the year byte, which is BCD too, from the year 2000 |
/// | 3     | 4-0  | month, BCD                                                    |
/// | 4     | 7-4  | class of the terminal, with its sign                          |
/// | 4     | 3-0  | version                                                       |
/// | 5, 6  |      | type, characteristic                                          |
/// | 7, 8  |      | signal and noise, dB                                          |
/// | 9     |      | code of event, signed                                         |
/// | 10    |      | address of the terminal; 0 is the head unit                   |
/// | 11-15 |      | data of the event                                             |
///
/// The catalogue, which may be missing, names the terminal.
void decodeRecord(const QByteArray& record, const Device* catalogue, QList<EventInfo>& rows);
