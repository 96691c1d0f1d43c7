// Memory of a program that handles passwords: what it has used is overwritten before it is given
// back, so that nothing of a password stays behind in freed blocks or old stack frames.
//
// A program that includes WipedMemory.cpp among its own sources has all its `new` memory wiped when
// it is deleted. Objects that live to the end of the program are their owners' to wipe.

#pragma once

// Has the cryptography library's memory wiped too. Called first in main().
void WipeLibraryMemory();

// Overwrites the stack below the caller's frame, as deep as this program goes. Called last in
// main().
void WipeStack();
