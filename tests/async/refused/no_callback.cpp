#include "kelarc/async.h"

static_assert(kelarc::async::detail::OperationOf<int>::Checked<0>::value);
