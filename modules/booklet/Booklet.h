// Booklet attributes for UTF-8 devices: imposition orientation, binding side and division.

#pragma once

// Writes the attribute lines to standard output, from the options that the job summary captured;
// nothing for printers with another language encoding. Runs before the summary, which cuts one of
// the options.
void OutputXPJLCommandforBooklet();
