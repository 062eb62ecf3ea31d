// Loads the part that it is given, which makes calls of its own, and makes one call more.

#include "arc/ArcRilD.h"
#include "record/subject/Subject.h"

#include <dlfcn.h>
#include <unistd.h>

int main(int, char** arguments)
{
    alarm(60);  // ends a program that hangs
    REQUIRE(dlopen(arguments[1], RTLD_NOW) != nullptr);
    REQUIRE(ARC_Close() == 0);
    return 0;
}
