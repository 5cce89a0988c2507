#include "model/tables.h"

#include "model/StateFamily.h"
#include "model/firstOf.h"
#include "texts/texts.h"

#include <algorithm>
#include <iterator>
#include <numeric>

namespace
{

using Text = QString (*)();

/// One row as it is written down here; the icon is a file name below the resource prefix.
struct Row
{
    quint8 code;
    Text name;
    const char* icon;
    QRgb background;
};

/// A length of time in the lists of durations and delays.
struct Span
{
    int count;
    bool minutes;
};

constexpr QRgb red = qRgba(255, 0, 0, 150);
constexpr QRgb green = qRgba(0, 255, 17, 150);
constexpr QRgb yellow = qRgba(255, 255, 0, 150);
constexpr QRgb blue = qRgba(30, 144, 255, 150);
constexpr QRgb grey = qRgba(187, 187, 187, 150);
constexpr QRgb white = qRgba(255, 255, 255, 100);
constexpr QRgb plain = qRgba(240, 240, 240, 255);

constexpr const char* empty = "Empty.png";

constexpr Row buttonRows[] = {
    {0x01, texts::stateButton1, "Оповещение-1.png", red},
    {0x81, texts::stateButton1, "Оповещение-1.png", red},
    {0x02, texts::stateButton2, "взят_снят-1.png", green},
    {0x82, texts::stateButton2, "взят_снят-1.png", green},
    {0x04, texts::stateButton3, "взят_снят-2.png", plain},
    {0x84, texts::stateButton3, "взят_снят-2.png", plain},
    {0x08, texts::stateButton4, empty, yellow},
    {0x88, texts::stateButton4, empty, yellow},
};

constexpr Row analogRows[] = {
    {0, texts::analogNorm, "Температура-1.png", green},     {1, texts::analogHigh, "Температура-2.png", red},
    {2, texts::analogLow, "Температура-3.png", blue},       {3, texts::analogReset, empty, yellow},
    {4, texts::analogTamper, "Провод-связь-2.png", yellow}, {5, texts::analogPowerFault, "Осн_питание-2.png", yellow},
    {6, texts::analogGroundShort, empty, yellow},           {7, texts::analogChannelShort, empty, yellow},
    {8, texts::analogDataCorrupted, empty, yellow},         {9, texts::analogDataCorrupted, empty, yellow},
    {10, texts::analogDataCorrupted, empty, yellow},        {11, texts::analogTemperatureOutside, empty, yellow},
};

constexpr Row channelRows[] = {
    {ParamItem::notActiveCode, texts::placeholderNotActive, empty, grey},
    {0, texts::channelNorm, empty, green},
    {1, texts::channelAlarm, "Пожар.png", red},
    {2, texts::channelShort, empty, yellow},
    {3, texts::channelTamper, "Провод-связь-2.png", yellow},
};

constexpr Row terminalRows[] = {
    {0x40, texts::terminalTamper, "Вскрытие-2.png", yellow},
    {0x20, texts::terminalMainPower, "Осн_батарея-2.png", yellow},
    {0x10, texts::terminalBackupPower, "Резерв_батарея-2.png", yellow},
    {0x08, texts::terminalDisconnection, "Радиосвязь-2.png", yellow},
    {0x04, texts::terminalDetectivity, empty, yellow},
    {0x02, texts::terminalFatal, empty, yellow},
};

constexpr Row outputRows[] = {
    {0, texts::outputOff, "", plain},
    {1, texts::outputOn, "", green},
};

constexpr Row modeRows[] = {
    {0, texts::modeDeactivation, empty, white}, {1, texts::modeActivation, empty, green},
    {2, texts::modePulsation2, empty, yellow},  {3, texts::modePulsation1, empty, yellow},
    {7, texts::modeDisable, empty, red},
};

constexpr Span durationSpans[] = {
    {1, false}, {2, false},  {3, false},  {4, false},  {5, false},  {6, false},  {7, false},  {8, false},
    {9, false}, {10, false}, {20, false}, {30, false}, {40, false}, {50, false}, {60, false}, {2, true},
    {3, true},  {4, true},   {5, true},   {6, true},   {7, true},   {8, true},   {9, true},   {10, true},
    {20, true}, {30, true},  {40, true},  {50, true},  {60, true},  {70, true},  {80, true},
};

constexpr Span delaySpans[] = {
    {5, false}, {10, false}, {30, false}, {60, false}, {2, true}, {5, true}, {10, true},
};

QString iconPath(const char* file)
{
    return *file == '\0' ? QString() : QStringLiteral(":/icons/icons/") + QString::fromUtf8(file);
}

ParamItemPtr makeItem(quint8 code, const QString& name, const QString& icon, const QColor& background)
{
    auto item = ParamItemPtr::create();
    item->code = code;
    item->name = name;
    item->icon = icon;
    item->background = background;
    return item;
}

template <std::size_t N>
ParamItems makeItems(const Row (&rows)[N])
{
    ParamItems items;
    items.reserve(N);
    for (const Row& row : rows) {
        items.append(makeItem(row.code, row.name(), iconPath(row.icon), QColor::fromRgba(row.background)));
    }
    return items;
}

/// Rows of a channel state that only says whose state it is; the state itself is the linked row.
ParamItems makeLinkedItems(const QString& name, const ParamItems& targets)
{
    ParamItems items;
    items.reserve(targets.size());
    for (const ParamItemPtr& target : targets) {
        items.append(makeItem(ParamItem::notActiveCode, name, emptyIcon(), QColor::fromRgba(plain)));
        items.last()->linked = target;
    }
    return items;
}

QString unitOf(const Span& span)
{
    if (span.minutes) {
        return span.count < 5 ? texts::unitMinutesFew() : texts::unitMinutes();
    }
    if (span.count == 1) {
        return texts::unitSecond();
    }
    return span.count < 5 ? texts::unitSecondsFew() : texts::unitSeconds();
}

/// A row without a length of time, then one for each span, with the positions as codes.
template <std::size_t N>
ParamItems makeSpanItems(const QString& first, const Span (&spans)[N])
{
    ParamItems items;
    items.reserve(N + 1);
    items.append(makeItem(0, first, emptyIcon(), QColor::fromRgba(plain)));
    for (const Span& span : spans) {
        items.append(makeItem(quint8(items.size()), QString::number(span.count) + QLatin1Char(' ') + unitOf(span),
                              emptyIcon(), QColor::fromRgba(plain)));
    }
    return items;
}

} // namespace

ParamTables makeParamTables()
{
    ParamTables tables;
    tables.buttonStates = makeItems(buttonRows);
    tables.analogStates = makeItems(analogRows);
    tables.stateChannels = makeItems(channelRows);
    for (const scriptRules::StateFamily& family : scriptRules::stateFamilies) {
        tables.stateChannels += makeLinkedItems(family.name(), tables.*family.states);
    }
    tables.terminalStates = makeItems(terminalRows);
    tables.outputStates = makeItems(outputRows);
    tables.modes = makeItems(modeRows);
    tables.durations = makeSpanItems(texts::durationNoLimit(), durationSpans);
    tables.delays = makeSpanItems(texts::delayNone(), delaySpans);
    return tables;
}

QColor unsetColor()
{
    return QColor::fromRgba(grey);
}

QString emptyIcon()
{
    return iconPath(empty);
}

ParamItemPtr findByCode(const ParamItems& rows, int code)
{
    return firstOf(rows, [code](const ParamItemPtr& row) { return row->code == code; });
}

ParamItems rowsOfMask(const ParamItems& rows, int mask)
{
    ParamItems chosen;
    std::copy_if(rows.begin(), rows.end(), std::back_inserter(chosen),
                 [mask](const ParamItemPtr& row) { return (row->code & mask) != 0; });
    return chosen;
}

int maskOf(const ParamItems& rows)
{
    return std::accumulate(rows.begin(), rows.end(), 0,
                           [](int mask, const ParamItemPtr& row) { return mask | row->code; });
}
