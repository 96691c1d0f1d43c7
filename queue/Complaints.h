// What is wrong with a job's options: what has been left out, and why the job cannot be printed.

#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

class Complaints {
 public:
  // Something that the user wanted is left out. Of what is wrong with one option or ticket,
  // `about`, the first thing counts: the rest follows from it.
  void warn(const std::string& about, const std::string& what) {
    if (about_.insert(about).second) warnings_.push_back(what + "; left out");
  }

  // An option has no effect, or a doubtful one, in a sentence of its own.
  void remark(const std::string& about, const std::string& sentence) {
    if (about_.insert(about).second) warnings_.push_back(sentence);
  }

  // The job must not be printed. The first reason stands.
  void fail(const std::string& why) {
    if (failure_.empty()) failure_ = why;
  }

  // Fails the job or warns.
  void complain(bool fails, const std::string& about, const std::string& what) {
    fails ? fail(what) : warn(about, what);
  }

  bool failed() const { return !failure_.empty(); }
  const std::string& failure() const { return failure_; }
  const std::vector<std::string>& warnings() const { return warnings_; }

 private:
  std::string failure_;
  std::vector<std::string> warnings_;
  std::set<std::string> about_;
};
