// What a process leaves in its memory.

#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

// Runs a program to its end, with `input` on its standard input and its output thrown away. Returns
// what its writable memory held just before it was given back, freed blocks and old stack frames
// included; nothing where a process cannot be looked into.
std::optional<std::string> MemoryAtExit(std::vector<std::string> arguments,
                                        const std::map<std::string, std::string>& environment,
                                        const std::string& input);
