// Storage of the job's process-wide state, zero at start.

#include "FilterFrame/Source/JobState.h"

char StdUserName[kUserNameSizeForUTF8];
char StdJBAUserName[kJBAUserNameSizeForUTF8];
char StdDocumentName[kNameSize];
char PTStdDocumentName[kNameSize];

char StdNUpInfo[kLayoutTextSize];
char StdLayoutInfo[kLayoutTextSize];
char StdLayoutDirectionInfo[kLayoutTextSize];
char StdLayoutRowInfo[kLayoutTextSize];
char StdLayoutColumnInfo[kLayoutTextSize];
char StdPaperInfoRectOriginXKey[kLayoutTextSize];
char StdPaperInfoRectOriginYKey[kLayoutTextSize];
char StdPaperInfoRectHeightKey[kLayoutTextSize];
char StdPaperInfoRectWidthKey[kLayoutTextSize];
char StdAdobePaperInfoRectOriginXKey[kLayoutTextSize];
char StdAdobePaperInfoRectOriginYKey[kLayoutTextSize];
char StdAdobePaperInfoRectHeightKey[kLayoutTextSize];
char StdAdobePaperInfoRectWidthKey[kLayoutTextSize];

char HostNameStr[97];
char IPAddressStr[46];

int JobPages = 0;
std::FILE* gJobFilefp = nullptr;

volatile std::sig_atomic_t CancelJob = 0;
volatile std::sig_atomic_t CancelJobByUser = 0;
volatile std::sig_atomic_t CancelJobForPipe = 0;
