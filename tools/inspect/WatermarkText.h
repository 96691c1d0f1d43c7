// Tells a watermark's text that shows from one that breaks the PostScript around it.

#pragma once

#include <string_view>

// Whether `text`, in front of " show", shows something: one PostScript string, in parentheses or in
// angle brackets; strings and glyphs by their names, each with its own operator, and a string last;
// or the name of such a text that is defined ahead of the pages.
bool IsWatermarkText(std::string_view text);
