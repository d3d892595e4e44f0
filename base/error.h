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

    // --- a drawing cannot be read ----------------------------------------------------------------------------------
    kNotXmlInUtf8,
    kForeignEncoding,  // 1: its name
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
    kMoreWarnings,  // 1: how many

    // --- a drawing cannot be written -------------------------------------------------------------------------------
    kPageNotWritable,

    kEnd,  // behind the last
};

// Errors and warnings alike. Empty fields are not known or mean nothing to the code.
struct Error {
    ErrorCode code = ErrorCode::kNone;
    std::vector<std::string> arguments;  // UTF-8, in the order in which the sentence numbers them
    std::string file;                    // bytes of the path as it was given
    std::int64_t line = 0;               // from 1; 0: none
    std::string element;                 // of a drawing: the name of the XML element
    std::string elementId;               // its id attribute

    auto operator<=>(const Error&) const = default;
};

inline Error makeError(ErrorCode code, std::vector<std::string> arguments = {}) {
    Error error;
    error.code = code;
    error.arguments = std::move(arguments);
    return error;
}

}  // namespace quorvel
