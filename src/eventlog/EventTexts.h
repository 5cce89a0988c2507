#pragma once

#include <QString>

struct EventInfo;

/// The form of a channel's state: the long one stands alone as the text of an event, the short one among the details of
/// a power-up, where a normal state isn't worth a word.
enum class ChannelForm
{
    Long,
    Short
};

/// @name Models that the texts treat in a way of their own, by class, version, type and characteristic
/// @{
bool isPanicButton(const EventInfo& event);
bool isCounter(const EventInfo& event);
bool isTemperatureSensor(const EventInfo& event);
/// @}

/// @name Details from a status or mode byte: a text and "; " for each deviation from the normal state
/// @{
QString textStatusUnit(quint8 status);
QString textStatusTerminal(quint8 status);
QString textModeTerminal(quint8 mode);
/// @}

/// The state of a channel, whose number counts from 1, in words. The class of the event's terminal decides what the
/// state byte means.
QString textStateChannel(const EventInfo& event, int channelNumber, quint8 state, ChannelForm form);
