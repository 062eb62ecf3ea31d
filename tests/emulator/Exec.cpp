// Death tests start their program again. Under an emulator, the system does not know the program's format, so this
// starts the emulator with the program.

#include <unistd.h>
#include <vector>

extern "C" int execv(const char* path, char* const arguments[])
{
    const char* const emulator[] = {KELARC_EMULATOR};
    std::vector<char*> whole;
    for (const char* word : emulator)
        whole.push_back(const_cast<char*>(word));
    whole.push_back(const_cast<char*>(path));
    for (char* const* argument = arguments + 1; *argument != nullptr; ++argument)
        whole.push_back(*argument);
    whole.push_back(nullptr);
    return execvp(whole[0], whole.data());
}
