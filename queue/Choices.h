// What was chosen for a job: the PPD's defaults, and over them the job's own options and standard
// attributes. libcups knows what belongs together (`sides` and Duplex, `finishings` and the PPD's
// keywords, custom values); what it passes over in silence is said here.

#pragma once

#include <cups/cups.h>
#include <cups/ppd.h>

#include <set>
#include <string>
#include <string_view>
#include <vector>

// An option of a job, as the user wrote it.
struct JobOption {
  std::string name;
  std::string value;
};

// What is marked for one option of the PPD.
struct Choice {
  std::string keyword;  // the choice's own spelling; "Custom" for an entered value
  std::string entered;  // the entered value, as text
  bool given = false;   // the job says so; else it is the PPD's default
};

// The PPD's default for an option, whole: libcups itself keeps 40 bytes of it. Empty when there is
// none.
std::string PPDDefault(ppd_file_t* ppd, const std::string& option);

class Choices {
 public:
  // Marks the PPD; null is a printer without options. `options` are the job's, in their order.
  Choices(ppd_file_t* ppd, std::vector<JobOption> options);
  ~Choices();
  Choices(const Choices&) = delete;
  Choices& operator=(const Choices&) = delete;

  // Whether the PPD has the option, and the choice too.
  bool offers(const std::string& option) const;
  bool offers(const std::string& option, const std::string& choice) const;

  // What is marked; an option that the PPD does not have has no keyword.
  Choice choice(const std::string& option) const;

  // The queue's default, as the PPD has it whole: a choice, or an entered value behind "Custom.".
  std::string defaultChoice(const std::string& option) const;

  // Marks the queue's default instead of what the job says.
  void markDefault(const std::string& option);

  // Whether a value is written as an entered one.
  static bool isEntered(std::string_view written);

  // Why a value that is written as an entered one is not acceptable; empty when it is.
  std::string enteredProblem(const std::string& option, const std::string& written) const;

  // Wipes the job's passwords.
  void forgetSecrets();

  // The job's own value of an option or attribute; null when it has none.
  const std::string* given(std::string_view name) const;

  const std::vector<JobOption>& jobOptions() const { return options_; }

  // Sets an option as if the job had given it.
  void give(const std::string& option, const std::string& value);

  // The options that the PPD has, and the choices of one.
  std::vector<std::string> optionNames() const;
  std::vector<std::string> choiceNames(const std::string& option) const;

 private:
  void mark();

  ppd_file_t* ppd_;
  std::vector<JobOption> options_;
  std::set<std::string> refused_;  // options for which the job's own value does not count
};
