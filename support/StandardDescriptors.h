#pragma once

namespace support {

/// Fills the descriptors 0, 1 and 2 if they are closed, so that no file, pipe or socket of the program becomes one of
/// them and gets text meant for the user. Reading and writing there still fails, as on closed descriptors. A program
/// calls this first; its child processes inherit the descriptors.
void fillStandardDescriptors();

/// The same for a library, which must not fill the application's descriptors: returns the descriptor that was just
/// opened, or replaces it by one above 2. Closes it and returns -1 when there is none left.
int aboveStandard(int descriptor);

}  // namespace support
