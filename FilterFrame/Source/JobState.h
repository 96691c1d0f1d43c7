// What the whole process knows about its one job: the names every module reads, the signal flags
// and the job copy's stream. Texts are NUL-terminated bytes in the printer's language encoding.

#pragma once

#include <csignal>
#include <cstddef>
#include <cstdio>

// The longest user name a UTF-8 device shows: 255 characters of three bytes, and the terminator.
inline constexpr std::size_t kUserNameSizeForUTF8 = 766;
inline constexpr std::size_t kNameSize = 255;
inline constexpr std::size_t kJBAUserNameSizeForUTF8 = 97;
inline constexpr std::size_t kJBAUserNameSize = 33;
inline constexpr std::size_t kLayoutTextSize = 255;

extern char StdUserName[kUserNameSizeForUTF8];        // job user; kNameSize used unless UTF-8
extern char StdJBAUserName[kJBAUserNameSizeForUTF8];  // the same before normalisation, cut
extern char StdDocumentName[kNameSize];               // job title
extern char PTStdDocumentName[kNameSize];             // job title for the device's job list

// Page layout and paper rectangle as the print dialog gave them.
extern char StdNUpInfo[kLayoutTextSize];
extern char StdLayoutInfo[kLayoutTextSize];
extern char StdLayoutDirectionInfo[kLayoutTextSize];
extern char StdLayoutRowInfo[kLayoutTextSize];
extern char StdLayoutColumnInfo[kLayoutTextSize];
extern char StdPaperInfoRectOriginXKey[kLayoutTextSize];
extern char StdPaperInfoRectOriginYKey[kLayoutTextSize];
extern char StdPaperInfoRectHeightKey[kLayoutTextSize];
extern char StdPaperInfoRectWidthKey[kLayoutTextSize];
extern char StdAdobePaperInfoRectOriginXKey[kLayoutTextSize];
extern char StdAdobePaperInfoRectOriginYKey[kLayoutTextSize];
extern char StdAdobePaperInfoRectHeightKey[kLayoutTextSize];
extern char StdAdobePaperInfoRectWidthKey[kLayoutTextSize];

extern char HostNameStr[97];   // name of the sending computer
extern char IPAddressStr[46];  // its encoded address; the job flow leaves it empty

extern int JobPages;           // pages of the document that have ended
extern std::FILE* gJobFilefp;  // the open job copy, or null

extern volatile std::sig_atomic_t CancelJob;        // 1 after SIGTERM; the streams poll it
extern volatile std::sig_atomic_t CancelJobByUser;  // 1 with it after SIGINT, SIGHUP: no file stays
extern volatile std::sig_atomic_t CancelJobForPipe;  // 1 after SIGPIPE; decides the exit status
