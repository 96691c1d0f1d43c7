// The job copy: a file that receives every byte the output primitives write. An administrator
// switches it on by creating a flag file.

#pragma once

// The flag file, and the name of the copy on systems before 10.10. The quotation marks are part of
// both names.
inline constexpr char FlagPath[] = "/Library/Printers/\"Zelva\"\"/jobcopy\"";
inline constexpr char JobFileNamePath[] = "/private/tmp/\"zlv\"\"%s.job\"";

// Opens gJobFilefp when the flag file exists: ff<timestamp>.job in TMPDIR, or the older name. A
// copy that cannot be created is done without, and so is one whose name others have taken: by a
// link, or by anything but an ordinary file.
void OpenJobCopy();

// Closes the job copy, if there is one, and sets its mode.
void CloseJobCopy();
