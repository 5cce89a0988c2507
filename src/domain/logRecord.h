#pragma once

/// What several folders know of the unit's log.

/// Bytes of a record. A block of the log is some of them behind each other, the oldest first.
constexpr int logRecordSize = 16;

/// Stands in the log's counter, beside the count, once the newest records have begun to replace the oldest.
constexpr int logWrappedBit = 0x8000;
