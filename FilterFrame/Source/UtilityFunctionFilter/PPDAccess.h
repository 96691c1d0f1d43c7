// The job's PPD, parsed once however many rooms ask for it, and the questions they ask.

#pragma once

#include <cups/ppd.h>

#include "text/Encoding.h"

// The PPD that the environment variable PPD names, or null when the variable is unset or the file
// cannot be read as a PPD. Parsed at the first call; owned by this room.
ppd_file_t* JobPPD();

// Forgets the parsed PPD; the next JobPPD() parses anew.
void CloseJobPPD();

// The first attribute, in file order, whose name begins with `name`; `spec` is ignored. Null when
// none does or `ppd` is null.
ppd_attr_t* ppdFindAttr_ALT(ppd_file_t* ppd, const char* name, const char* spec);

// 1 when the attribute `keyword` (found as above) has `needle` anywhere in its value, else 0.
int CheckIfPPDKeywordSupported(ppd_file_t* ppd, const char* keyword, const char* needle);

// The value of the job's PPD attribute `name` (found as above), or null when there is none.
const char* JobPPDValue(const char* name);

// Whether the job's PPD has the attribute `name` with exactly this value.
bool JobPPDValueIs(const char* name, const char* value);

// The attribute that names the encoding of a printer's texts, and its value for UTF-8.
inline constexpr char KPPDCharEncoding[] = "ZLVPrinterLanguageEncoding";
inline constexpr char kUTF8CharEncoding[] = "UTF-8";

// Whether the printer takes its texts in UTF-8 rather than ISO Latin-1.
bool PrinterLanguageIsUTF8();

// Whether the printer decomposes PostScript itself and wants its settings as PJL.
bool PrinterDecomposesPostScript();

// The text encoding that matches the PPD's LanguageEncoding; UTF-8 when there is none.
TextEncoding GetCFStringSimEncodingFromPPD(ppd_file_t* ppd);
