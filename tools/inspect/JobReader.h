// Reads whole jobs.

#pragma once

#include <string_view>

#include "tools/inspect/JobParser.h"

// Reads the job that `fd` stands at the beginning of; `sink` receives its document.
JobReport ReadJob(int fd, const PostScriptSink& sink = {});

// Reads a job that lies in memory.
JobReport ReadJob(std::string_view bytes);
