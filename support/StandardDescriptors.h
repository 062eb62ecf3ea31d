#pragma once

namespace support {

/// Fills the descriptors 0, 1 and 2 where they are closed, so that no file, pipe or socket of the program becomes one
/// of them and gets what is meant for the user. Reading and writing there goes on to fail, as it does while they are
/// closed. A program calls this before anything else; what it starts inherits them.
void fillStandardDescriptors();

/// The same in a library, which must not fill what is the application's: the descriptor that was just opened, or in its
/// place one above 2. Closes it and gives -1 when there is none left.
int aboveStandard(int descriptor);

}  // namespace support
