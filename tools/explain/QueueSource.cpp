// Asking libcups.

#include "tools/explain/QueueSource.h"

#include <cups/cups.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

#include "FilterFrame/Source/UtilityFunctionFilter/PPDAccess.h"
#include "queue/SecretOptions.h"
#include "queue/TicketKeys.h"
#include "tools/explain/Candidates.h"

namespace {

// A queue's list also says what it is; only job options count.
bool IsJobOption(ppd_file_t* ppd, const std::string& name) {
  return ppdFindOption(ppd, name.c_str()) != nullptr || CupsAttribute(name) != nullptr ||
         ActingName(name) != name || !TicketKeyOf(name).empty();
}

}  // namespace

QueueSource PPDFromFile(const std::string& file) {
  QueueSource source;
  CloseJobPPD();
  setenv("PPD", file.c_str(), 1);
  source.ppd = JobPPD();
  if (source.ppd != nullptr) return source;
  int line = 0;
  const ppd_status_t status = ppdLastError(&line);
  source.error = ppdErrorString(status);
  if (line > 0) source.error += " in line " + std::to_string(line);
  return source;
}

QueueSource PPDFromQueue(const std::string& queue) {
  const std::string name = queue.substr(0, queue.find('/'));
  const std::string instance = queue.substr(std::min(name.size() + 1, queue.size()));
  const char* file = cupsGetPPD(name.c_str());
  if (file == nullptr) return {nullptr, {}, cupsLastErrorString()};
  QueueSource source = PPDFromFile(file);
  unlink(file);
  if (source.ppd == nullptr) return source;
  cups_dest_t* dest = cupsGetNamedDest(CUPS_HTTP_DEFAULT, name.c_str(),
                                       instance.empty() ? nullptr : instance.c_str());
  for (int i = 0; dest != nullptr && i < dest->num_options; i++) {
    const JobOption option = {dest->options[i].name, dest->options[i].value};
    if (IsJobOption(source.ppd, option.name)) source.options.push_back(option);
  }
  if (dest != nullptr) cupsFreeDests(1, dest);
  return source;
}

std::vector<JobOption> ParsedOptions(std::string text) {
  return TakeJobOptions(text.data());
}
