// Why something could not be done, in the language of the tools. The parts below the window say it in English, which is
// right for a command line and a log; the window says what it knows of that in Japanese too.
#pragma once

#include <QString>

namespace quorvel::desktop {

// What is not known stays as it is, and so does all that the file itself says: names, numbers, places.
QString japaneseCause(const QString& english);

}  // namespace quorvel::desktop
