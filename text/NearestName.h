// The name that somebody meant who wrote another one.

#pragma once

#include <span>
#include <string>
#include <string_view>

// The candidate that differs least from `name`: by letters wrong, missing, superfluous or
// exchanged, case not counting. Empty when none is near: more than a third of the letters differ.
std::string NearestName(std::string_view name, std::span<const std::string> candidates);
