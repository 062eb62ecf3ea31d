#pragma once

#include "receiver/ReceiverTypes.h"

#include <string_view>

namespace arcsim {

/// What the sentences of one recorded epoch say about fix, motion and satellites. `previous` supplies the date and the
/// satellites of an epoch that does not repeat them.
ReceiverStatus statusOfSentences(std::string_view epoch, const ReceiverStatus& previous);

}  // namespace arcsim
