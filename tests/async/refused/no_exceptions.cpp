#include "kelarc/async.h"
