// What the host offers of the plug-in apart from the tools: menu items, notifications, the timer that keeps the panel
// live, and the recalculation as an action.
#pragma once

#include <string>

#include "hostapi/messages.h"

namespace quorvel {

// At start-up, in this order. A nonzero result ends the start-up.
AIErr AddNotifiers();
AIErr AddMenus();
AIErr AddTimer();
AIErr AddAction();

// The words of the command that opens the settings, in the menu and in the panel's flyout. System code page.
std::string SettingsCommandText();

AIErr MenuGo(const AIMenuMessage* message);
AIErr MenuUpdate(const AIMenuMessage* message);
AIErr TimerGo(const AITimerMessage* message);
AIErr Notify(const AINotifierMessage* message);
AIErr DoAction(const AIActionMessage* message);

}  // namespace quorvel
