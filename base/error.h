// An error as a value: a code, where it happened, and what the sentence about it needs to name. The sentences
// themselves, in each language, are in app/sentences.cpp; a room below it never words anything for a user.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quorvel {

// Grouped by the room that gives it. Each has a row in app/sentences.cpp; the number of arguments is given here.
enum class ErrorCode : std::uint16_t {
    kNone,
    // --- the system's, from errno; 1: its number -------------------------------------------------------------------
    kSystem,
    // --- files ------------------------------------------------------------------------------------------------------
    kDanglingLink,  // 1: the path that the link leads to
    kReadOnlyFile,
    kNotRegular,    // a device, pipe or socket where a file is read
    kFileTooLarge,  // 1: the limit in megabytes
};

// Errors and warnings alike. Empty fields are not known or mean nothing to the code.
struct Error {
    ErrorCode code = ErrorCode::kNone;
    std::vector<std::string> arguments;  // UTF-8, in the order in which the sentence numbers them
    std::string file;                    // bytes of the path as it was given
    std::int64_t line = 0;               // from 1; 0: none
    std::string element;                 // of a drawing: the name of the XML element
    std::string elementId;               // its id attribute

    bool operator==(const Error&) const = default;
};

inline Error makeError(ErrorCode code, std::vector<std::string> arguments = {}) {
    Error error;
    error.code = code;
    error.arguments = std::move(arguments);
    return error;
}

}  // namespace quorvel
