// How times are taken and printed.
#pragma once

#include <QElapsedTimer>
#include <algorithm>
#include <cstdio>
#include <vector>

namespace kalvor::bench {

template <class Body>
double medianMs(int runs, Body body)
{
  std::vector<double> times;
  for (int i = 0; i < runs; ++i) {
    QElapsedTimer timer;
    timer.start();
    body();
    times.push_back(timer.nsecsElapsed() / 1e6);
  }
  std::sort(times.begin(), times.end());
  return times[times.size() / 2];
}

inline void line(const char* what, double ours, const char* against, double theirs)
{
  std::printf("%-46s %10.3f ms | %-40s %10.3f ms | ratio %6.2f\n", what, ours, against, theirs, ours / theirs);
}

}  // namespace kalvor::bench
