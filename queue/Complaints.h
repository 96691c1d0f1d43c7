// What is wrong with a job's options: what has been left out, and why the job cannot be printed.

#pragma once

#include <string>
#include <vector>

class Complaints {
 public:
  // Something that the user wanted is left out.
  void warn(const std::string& what) { warnings_.push_back(what + "; left out"); }

  // Something has no effect or is doubtful, in a sentence of its own.
  void remark(const std::string& sentence) { warnings_.push_back(sentence); }

  // The job must not be printed. The first reason stands.
  void fail(const std::string& why) {
    if (failure_.empty()) failure_ = why;
  }

  // Fails the job or warns.
  void complain(bool fails, const std::string& what) { fails ? fail(what) : warn(what); }

  bool failed() const { return !failure_.empty(); }
  const std::string& failure() const { return failure_; }
  const std::vector<std::string>& warnings() const { return warnings_; }

 private:
  std::string failure_;
  std::vector<std::string> warnings_;
};
