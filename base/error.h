// An error as a value: a code, where it happened, and what the sentence about it needs to name. The sentences
// themselves, in each language, are in app/sentences.cpp; a room below it never words anything for a user.
#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace quorvel {

// Grouped by what was being done. Each has a row in app/sentences.cpp; the arguments are given here, by their places.
enum class ErrorCode : std::uint16_t {
    kNone,
    kSystem,  // 1: errno

    // --- files -----------------------------------------------------------------------------------------------------
    kDanglingLink,  // 1: the path that the link leads to
    kReadOnlyFile,
    kNotRegular,    // a device, pipe or socket where a file is read
    kFileTooLarge,  // 1: the limit in megabytes
    kNoBackup,      // 1: errno
    kFolderMade,    // 1: its path

    // --- a drawing cannot be read ----------------------------------------------------------------------------------
    kNotXmlInUtf8,
    kForeignEncoding,  // 1: its name
    kBadCompression,   // damaged or cut off
    kForeignByte,
    kXmlBadTag,
    kXmlBadInstruction,
    kXmlBadComment,
    kXmlBadCdata,
    kXmlBadDocumentType,
    kXmlBadText,
    kXmlBadStartTag,
    kXmlBadAttribute,
    kXmlBadEndTag,
    kXmlTagMismatch,
    kXmlNoElement,
    kXmlNoMemory,
    kXmlSeveralRoots,
    kBrokenEntity,
    kExternalEntity,
    kNestedEntity,
    kEntitiesTooMany,
    kEntitiesTooLarge,
    kNotSvg,
    kElementsTooDeep,  // 1: the limit
    kNestedTooDeeply,
    kStyleSheetsTooCostly,
    kTooManyCopies,
    kBadTransform,
    kTransformOutOfRange,
    kViewBoxOutOfRange,
    kCoordinateOutOfRange,
    kPathOutOfRange,
    kPointsOutOfRange,
    kBadLength,        // 1: the attribute
    kNoPathCommand,    // 1: the character, from 1; 2: what is there
    kNoFirstMove,      // 1: the character, from 1; 2: what is there
    kBadPathNumber,    // 1: the character, from 1; 2: what is there
    kPathCutOff,       // 1: the character, from 1
    kBadPointsNumber,  // 1: the character, from 1
    kTextUnreadable,

    // --- warnings: what of a drawing is kept but not understood ----------------------------------------------------
    kUnknownElements,  // 1: their name
    kKeptElements,     // 1: their name
    kKeptTextsOnPaths,
    kUseOfItself,
    kUseOfNothing,
    kSkippedRules,
    kTransformsInCss,
    kMarkupEntities,
    kImageLeftOut,     // 1: the name that the drawing gives
    kImageOutside,     // 1: the name that the drawing gives; 2: the folder that the image is in
    kImageRemote,      // 1: the address
    kPaintingLeftOut,  // 1: how many pieces; 2: some of their elements
    kEffectLeftOut,    // 1: an element
    kMoreWarnings,     // 1: how many

    // --- a drawing cannot be written -------------------------------------------------------------------------------
    kPageNotWritable,
    kNotReadBack,  // 1: the line of the new text, 0 when it has none

    // --- the profile and the plug-in ---------------------------------------------------------------------------------
    kNotCreatable,
    kNotReadable,
    kNotWritable,
    kPluginNotLoaded,      // 1: the loader's words
    kNoEntryPoint,         // 1: the function's name
    kStartFailed,          // 1: the plug-in's code
    kNotChecked,           // the plug-in has made no trial of its dimensions
    kPluginFailed,         // 1: what was thrown
    kPluginFailedUnknown,  // what was thrown says nothing
    kInternal,             // 1: what was thrown

    // --- a script cannot be read -------------------------------------------------------------------------------------
    kOpenText,
    kTrailingBackslash,
    kUnknownEscape,    // 1: the character
    kUnknownVerb,      // 1: the verb
    kWordCount,        // 1: the verb
    kExpectWordCount,  // 1: what is expected; 2: how many words
    kExpectOnOrOff,
    kUnknownWord,      // 1: the verb; 2: the word
    kNotANumber,       // 1: the word
    kNotAWholeNumber,  // 1: the word

    // --- a line of a script cannot be done ---------------------------------------------------------------------------
    kNoDrawing,
    kUnknownSetting,  // 1: its key
    kBadPageSize,
    kBadZoom,
    kNoTool,  // 1: the title
    kNoToolSelected,
    kNothingToUndo,
    kNothingToRedo,
    kNoAction,        // 1: the name
    kNoMenuItem,      // 1: the name
    kNoFlyoutItem,    // 1: its number
    kNoPanelControl,  // 1: its number

    // --- an expectation of a script does not hold --------------------------------------------------------------------
    kExpectedBeep,
    kExpectedNoBeep,     // 1: how many
    kExpectedOther,      // 1: of what; 2: as expected; 3: as found
    kExpectedAny,        // 1: of what; 2: as expected
    kExpectedFocus,      // 1: the control; 2: as found
    kExpectedPixels,     // 1: how many; 2: as found
    kExpectedMenuState,  // 1: on or off; 2: as found
    kExpectedMenuItem,   // 1: on or off
    kUnexpectedAlert,    // 1: its text in quotes
    kReplyLeft,

    // --- replies of a script to what the plug-in shows -------------------------------------------------------------
    kUnexpectedBox,          // 1: its kind and text
    kUnexpectedDialog,       // 1: its number
    kUnexpectedDialogFirst,  // 1: its number; 2: the one that the next reply is for
    kUnexpectedFileDialog,
    kDialogClosed,         // 1: the dialog; 2: the control
    kDialogNotClosed,      // 1: the dialog
    kControlMissing,       // 1: the dialog; 2: the control
    kControlHolds,         // 1: the dialog; 2: the control; 3: the text as expected; 4: as found
    kControlHidden,        // 1: the dialog; 2: the control
    kControlDisabled,      // 1: the dialog; 2: the control
    kControlWithoutText,   // 1: the dialog; 2: the control
    kControlWithoutRows,   // 1: the dialog; 2: the control
    kControlNotOn,         // 1: the dialog; 2: the control
    kControlNotOff,        // 1: the dialog; 2: the control
    kControlNotPressable,  // 1: the dialog; 2: the control
    kControlRow,           // 1: the dialog; 2: the control; 3: the row
    kBlockFreed,

    // --- the host's own editing --------------------------------------------------------------------------------------
    kNoArt,           // 1: the id
    kArtNotEditable,  // 1: the id
    kIdTaken,         // 1: the id
    kNothingToPaste,
    kNotPasteable,
    kNoLayer,           // 1: the title
    kLayerNotEditable,  // 1: the title

    // --- the command line --------------------------------------------------------------------------------------------
    kNoCommand,
    kOutputLost,           // 1: errno
    kOptionMissing,        // 1: its name
    kOptionWithoutValue,   // 1: the kind of value
    kOptionRepeated,       // 1: how often
    kUnexpectedArgument,   // 1: the argument
    kUnexpectedArguments,  // 1: the arguments
    kNotConvertible,       // 1: the option's name; 2: the value
    kNotOneOf,             // 1: the value; 2: those that there are
    kNotAboveZero,
    kNotInRange,     // 1: the value; 2: the least; 3: the greatest
    kOptionRefused,  // 1: the option parser's words
    kOutputOrFolder,
    kOutputForSeveral,
    kSameName,
    kNotFourNumbers,
    kOnePoint,
    kNotKeyAndText,
    kUnknownKey,
    kNoCharacter,    // that code page 932 lacks; 1: its code point
    kNoCharacterAt,  // 1: the row; 2: the column; 3: the code point
    kNoScheduleTools,
    kLayerClosed,
    kNoDimension,  // 1: the id
    // Why a measured point cannot follow, in the order of LinkState; 1: the point
    kPointFree,
    kPointDeleted,
    kPointUnpainted,
    kPointLayer,
    kPointSegment,
    kPointCopy,
    kPointNoCrossing,
    kPointNoArc,
    kNoSnapReport,
    kNoPainter,  // 1: the program
    kNotRunnable,
    kNoPipe,
    kNoProcess,
    kProcessKilled,  // 1: the signal

    // --- exporting and the window ------------------------------------------------------------------------------------
    kExportOntoDrawing,
    kNoDrawingNamed,
    kNumberNeeded,
    kWholeNumberNeeded,
    kLanguageNeeded,
    kPageEmpty,
    kPageTooLargeForPdf,
    kTooManyPixels,  // 1: across; 2: down
    kNoPictureMemory,
    kExportEnding,

    kEnd,  // behind the last
};

// Errors and warnings alike. Empty fields are not known or mean nothing to the code.
struct Error {
    ErrorCode code = ErrorCode::kNone;
    std::vector<std::string> arguments;  // UTF-8, in the order in which the sentence numbers them
    std::string file;                    // bytes of the path, or an option of the command line, as it was given
    std::int64_t line = 0;               // from 1; 0: none
    std::string element;                 // of a drawing: the name of the XML element
    std::string elementId;               // its id attribute

    auto operator<=>(const Error&) const = default;
    Error inFile(std::string path) && {
        file = std::move(path);
        return std::move(*this);
    }
};

inline Error makeError(ErrorCode code, std::vector<std::string> arguments = {}) {
    Error error;
    error.code = code;
    error.arguments = std::move(arguments);
    return error;
}

}  // namespace quorvel
