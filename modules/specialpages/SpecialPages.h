// Special pages: covers, inserted sheets and page exceptions. The print dialog hands them over as
// numbered tickets with comma-separated fields; each becomes a run of attribute lines.

#pragma once

#include <cstdint>

#include "engine/TicketStore.h"

// How many of each the dialog claims; negative ones count as 0.
struct SpecialPageOption {
  std::int32_t coverCount;
  std::int32_t insertionCount;
  std::int32_t exceptionCount;
};
extern SpecialPageOption psOptionSpecialPage;

// Keys: three counts, and the prefixes of the numbered tickets (0, 1, 2, ... without leading
// zeros).
inline constexpr char kSPXPCoverCountKey[] = TICKET_KEY("XPIFCoverCountTicket");
inline constexpr char kSPXPCoverValueKey[] = TICKET_KEY("XPIFCoverValueTicket_");
inline constexpr char kSPXPInsertionCountKey[] = TICKET_KEY("XPIFInsertionCountTicket");
inline constexpr char kSPXPInsertionValueKey[] = TICKET_KEY("XPIFInsertionValueTicket_");
inline constexpr char kSPXPExceptionCountKey[] = TICKET_KEY("XPIFExceptionCountTicket");
inline constexpr char kSPXPExceptionValueKey[] = TICKET_KEY("XPIFExceptionValueTicket_");
inline constexpr char kSPViewTicketKey[] = TICKET_KEY("XPIFCommandTicket_");
inline constexpr const char* kSpecialPageNumberedKeys[] = {
    kSPXPCoverValueKey, kSPXPInsertionValueKey, kSPXPExceptionValueKey, kSPViewTicketKey};

inline constexpr std::int32_t SpecialPageTicketDataNum = 3;
extern const TicketData SpecialPageTicketData[SpecialPageTicketDataNum];

// The dialog's keywords, each followed by the device's word. The counts are numbers of pointers.
inline constexpr int CoverTypeXPJLCommValueCount = 8;
inline constexpr int MediaColorXPJLCommValueCount = 36;
inline constexpr int SidesXPJLCommValueCount = 6;
extern const char* const CoverTypeXPJLComm[CoverTypeXPJLCommValueCount];
extern const char* const MediaColorXPJLComm[MediaColorXPJLCommValueCount];
extern const char* const SidesXPJLComm[SidesXPJLCommValueCount];

// The paper selection that means a custom size.
inline constexpr char CustomPapertyeSelectNumber[] = "33";

// Field buffers, in bytes.
inline constexpr int kSpecialPageFieldSize = 64;

// Fills the counts from the filter's argument vector.
void SpecialPageGetTicketFromPDE(char* args[]);

// Sets the counts to zero. Called before tickets are read.
void SpecialPageInializeDescriptionTable();

// Writes all lines to standard output, from the job options in args[5].
void OutputXPJLCommandForSpecialPage(char* args[]);

// Splits one field off a comma-separated text into `field` (kSpecialPageFieldSize bytes, cut to
// what fits). Returns the field's full length plus one, 0 when it was the last one, -1 for a null
// argument.
int getOneValue(const char* source, char* field);

// Copies the device word for a keyword into `out` (kSpecialPageFieldSize bytes). `table` holds
// pairs; keywords are looked for at the even places below `count`, each with its word behind it.
// Returns 0, or -1 when there is none.
int getSpecialPageXPJLValue(const char* keyword, const char* const* table, int count, char* out);

// Writes a cover's media lines. `value` is the cover's ticket, whose media fields begin at
// `offset`; `source` is the media source field. `out` (kSpecialPageFieldSize bytes) receives the
// device's colour.
void OutputSPMediaSizeAndColor(const char* source, int offset, const char* value,
                               const char* paperSelection, char* out);
