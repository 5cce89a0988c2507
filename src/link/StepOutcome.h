#pragma once

class message;

/// How the steps of a device operation are judged and named. Stateless; any thread.
namespace step
{

/// Whether a step failed: nothing came, the port failed, the answer was damaged, or the unit refused.
bool isErrorAnswer(const message& answer);

/// What the debug log says of a failed attempt at a step of this type.
const char* failureLabel(int requestType);

} // namespace step
