// Explanations for readers and for programs.

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/explain/Explanation.h"
#include "tools/explain/JobComparison.h"

struct ExplanationReport {
  std::vector<OptionExplanation> options;
  std::vector<std::string> remarks;  // on the whole job
  std::string failure;               // why nothing is printed
  std::vector<std::string> header;
  std::optional<JobComparison> comparison;

  // Whether every option has its effect, and the job, if there is one, is as it should be.
  bool fine() const;
};
ExplanationReport ReportOn(const Explainer& explainer);

// As lines that end in LF.
std::string TextExplanation(const ExplanationReport& report);
std::string TextExplanation(const std::string& code, const LineExplanation& line);

// One JSON value with a line feed behind it; "version" is kExplanationVersion.
inline constexpr int kExplanationVersion = 1;
std::string JsonExplanation(const ExplanationReport& report);
std::string JsonExplanation(const std::string& code, const LineExplanation& line);

// What a line says: "Staple position: two at the left". Empty when nobody knows the line.
std::string LineInWords(const std::string& line);

// The word for an effect.
const char* EffectInWords(Effect effect);
const char* EffectKey(Effect effect);
