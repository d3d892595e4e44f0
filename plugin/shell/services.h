// What every tool family needs of the shell: committing the cursor, naming the undo step, the cursor shape, the beep,
// the window to draw the preview on, and texts for the host.
#pragma once

#include <string>
#include <string_view>

#include "platform/window.h"
#include "plugin/shell/globals.h"

namespace quorvel {

// endPoint takes the cursor; the step, the cursor and its modifiers become 0. The caller erases the preview next.
void CommitCursor(PluginGlobals* globals);
// Names the undo step after the tool whose event is being handled.
void NameUndoForTool(AIToolHandle tool);
// undoBase "Move" gives "Undo Move" and "Redo Move", or their Japanese counterparts. Bytes of the system code page.
void SetUndoNames(std::string_view undoBase);
// Asks the host for the plug-in's own module and keeps it in gModule; false when either step fails.
bool ReachModule();
// 16101 to 16110. When the module cannot be reached the cursor stays as it is.
void SetToolCursor(std::int32_t cursorId);
// The Linear family's table from a snap kind to a cursor; other kinds give 16102.
std::int32_t CursorForSnapKind(std::int16_t kind);
// The error signal of a tool.
void Beep();
// A run that is refused: the context bracket and a beep.
void EndRunWithBeep(PluginGlobals* globals);
// The window that shows the document; null when none is found.
platform::ViewWindowRef FindViewWindow();
void AppendErrorLog(std::string_view text);

// The zoom of view 0, widened; 1.0 without a view.
double ViewZoom();
// One screen pixel in points: 1 / zoom, or the negated zoom when that is not above 0.
double PixelSize();

// A text of our own tables (UTF-8) in the current language, as bytes of the system code page.
std::string ChooseText(const char* japanese, const char* english);
// A host string from bytes of the system code page; lives until the message returns.
AIUnicodeStringRef HostString(std::string_view bytes);
// The system code page (932).
std::string ToCodePage(std::string_view utf8);

// The base folder of the preference files; its folders are created. Without a separator at the end.
std::string GetPrefsFolder();

}  // namespace quorvel
