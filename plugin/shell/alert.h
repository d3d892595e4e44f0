// What a user sees of a failure: one alert with the code and the message in which it came up. The tools themselves only
// beep.
#pragma once

#include "hostapi/types.h"

namespace quorvel {

// The text is in the system code page. Without the AI User Suite nothing is shown.
void ShowErrorAlert(const char* text);
// Shows the result of a message. 0, 1, a suite that was not found and the user's own "stop" stay silent.
void AlertResult(AIErr result, const char* caller, const char* selector);
// For errors that come up apart from a message's result; the code's four characters print in reading order.
void ReportInternalError(AIErr code);

}  // namespace quorvel
