#pragma once

namespace rolu {

// What is printed on standard output while this lives goes nowhere: the library prints a line when its VPM
// family starts, and the output of these programs is read by others.
class SilencedOutput {
 public:
  SilencedOutput();
  ~SilencedOutput();
  SilencedOutput(const SilencedOutput&) = delete;
  SilencedOutput& operator=(const SilencedOutput&) = delete;

 private:
  int saved_;
};

}  // namespace rolu
