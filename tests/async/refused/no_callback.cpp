#include "kelarc/async.h"

static_assert(kelarc::async::detail::OperationOf<int>::check<0>());
