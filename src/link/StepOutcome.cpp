#include "link/StepOutcome.h"

#include "link/message.h"
#include "link/protocol_HUBN_NX_Q.h"

#include <algorithm>
#include <iterator>

namespace step
{

namespace
{

struct Label
{
    int requestType;
    const char* text;
};

constexpr Label labels[] = {
    {protocol_HUBN_NX_Q::Read_Log, "Error Read LOG!"},
    {protocol_HUBN_NX_Q::Read_Info_Log, "Error Read Info about LOG!"},
    {protocol_HUBN_NX_Q::Write_Config, "Error Write CONFIGURATION!"},
    {protocol_HUBN_NX_Q::Write_Script, "Error Write SCRIPT!"},
    {protocol_HUBN_NX_Q::Read_Config, "Error Read CONFIGURATION!"},
    {protocol_HUBN_NX_Q::Read_Script, "Error Read SCRIPT!"},
    {protocol_HUBN_NX_Q::Busy_Channel_System, "Error Busy_Channel_System!"},
    {protocol_HUBN_NX_Q::Busy_Channel_Sensor, "Error Busy_Channel_Sensor!"},
    {protocol_HUBN_NX_Q::Busy_Channel_Execute, "Error Busy_Channel_Execute!"},
    {protocol_HUBN_NX_Q::Busy_Channel_Interface, "Error Busy_Channel_Interface!"},
    {protocol_HUBN_NX_Q::Busy_Channel_Analog, "Error Busy_Channel_Analog!"},
    {protocol_HUBN_NX_Q::Terminal_System_Info, "Error Terminal_System_Info!"},
    {protocol_HUBN_NX_Q::Terminal_Sensor_Info, "Error Terminal_Sensor_Info!"},
    {protocol_HUBN_NX_Q::Terminal_Execute_Info, "Error Terminal_Execute_Info!"},
    {protocol_HUBN_NX_Q::Terminal_Interface_Info, "Error Terminal_Interface_Info!"},
    {protocol_HUBN_NX_Q::Terminal_Analog_Info, "Error Terminal_Analog_Info!"},
};

} // namespace

bool isErrorAnswer(const message& answer)
{
    return answer.timedOut() || answer.portFailed() || !answer.isValid() || answer.answerCode() != 0;
}

const char* failureLabel(int requestType)
{
    const auto* const found = std::find_if(std::begin(labels), std::end(labels), [requestType](const Label& label) {
        return label.requestType == requestType;
    });
    return found != std::end(labels) ? found->text : "Error UNKNOWN COMMAND";
}

} // namespace step
