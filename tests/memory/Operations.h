#pragma once

#include "kelarc/KelArc.h"

#include <atomic>
#include <string>
#include <vector>

/// One operation of the class, asked for with answers that are only counted.
struct Operation
{
    const char* name;
    void (*request)(kelarc::KelArc& modem, std::atomic<int>& answers);
    int answersOnSuccess;
};

/// Every operation that an open object answers or queues, but open() and close().
const std::vector<Operation>& operations();
