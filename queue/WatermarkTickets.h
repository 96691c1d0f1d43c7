// What a watermark needs beside the words of its options: the text as PostScript, its size on the
// page, and the page.

#pragma once

#include <string>
#include <string_view>

#include "queue/Choices.h"
#include "queue/TicketList.h"

// What stands for a text that is too long for the line that shows it.
inline constexpr char kDefinedWatermarkText[] = "ZLVWatermarkText ()";

// A page's width and height in points.
struct PageSize {
  double width;
  double height;
};

// Adds the tickets of the watermark that `tickets` name, as far as they lack them. What the text
// needs ahead of the document, as PostScript, goes to `definitions`; it stays empty where the text
// fits the line that shows it. Returns why there can be no watermark; empty when there can.
std::string AddWatermarkTickets(const Choices& choices, PageSize page, TicketList& tickets,
                                std::string& definitions);

// The PostScript that shows `text` (UTF-8) all but its last part, which stays as a string for
// `show`. Empty when the font lacks a character. The width in font sizes goes to `width`.
std::string ShownText(std::string_view text, double& width);

// Whether `text` is one PostScript string, in parentheses or in angle brackets, and nothing else.
bool IsOnePostScriptString(std::string_view text);
