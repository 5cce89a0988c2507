#pragma once

class message;

/// How the steps of a device operation are judged. Stateless; any thread.
namespace step
{

/// Whether a step failed: nothing came, the port failed, the answer was damaged, or the unit refused.
bool isErrorAnswer(const message& answer);

} // namespace step
