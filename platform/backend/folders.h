// Where the user's own files lie when no script says otherwise: the folders of the desktop's base directories.
#pragma once

#include <string>

namespace quorvel::platform {

// The documents folder that the user chose for the desktop, else "Documents" in the home; empty without a home.
std::string userDocumentsFolder();
// The folder for logs of this program, made when it is not there; empty when that fails.
std::string userStateFolder();

std::string withoutEndSeparator(std::string path);

}  // namespace quorvel::platform
