#include "link/StepOutcome.h"

#include "link/message.h"

namespace step
{

bool isErrorAnswer(const message& answer)
{
    return answer.timedOut() || answer.portFailed() || !answer.isValid() || answer.answerCode() != 0;
}

} // namespace step
