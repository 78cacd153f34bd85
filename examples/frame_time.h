// How long drawing takes, as text for the title of a window.
#ifndef EXAMPLES_FRAME_TIME_H_
#define EXAMPLES_FRAME_TIME_H_

#include <chrono>
#include <cstdio>
#include <string>

class FrameTime {
 public:
  // Calls `draw` and takes its time.
  template <class Draw>
  void Measure(Draw&& draw) {
    const auto start = std::chrono::steady_clock::now();
    draw();
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    // A moving mean, which can be read while the frames go by.
    mean_ = mean_ == 0 ? took.count() : mean_ + (took.count() - mean_) / 16;
  }

  std::string Title(const std::string& name) const {
    char text[40];
    std::snprintf(text, sizeof text, " - %.3f ms per frame", mean_);
    return name + text;
  }

 private:
  double mean_ = 0;
};

#endif  // EXAMPLES_FRAME_TIME_H_
