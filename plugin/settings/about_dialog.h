// The About box: the product's name and version.
#pragma once

#include "hostapi/types.h"

namespace quorvel {

// Modal, in the current language.
AIErr AboutBox();

}  // namespace quorvel
