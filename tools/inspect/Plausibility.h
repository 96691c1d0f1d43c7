// Judges what a job's lines mean together: values that no device can obey, settings that lack
// another one, lines that replace each other, and a document that contradicts the header.

#pragma once

#include "tools/inspect/JobReport.h"

// Adds what is wrong to the problems of a report that is complete otherwise.
void JudgeSettings(JobReport& report);
