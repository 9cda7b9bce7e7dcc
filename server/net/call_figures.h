// What a server counts of its calls, for whoever watches it. Any thread may note.
#pragma once

#include <QByteArray>
#include <array>
#include <chrono>
#include <map>
#include <mutex>
#include <string>

#include "layer_export.h"

namespace kalvor::server {

enum class CallOutcome : quint8 {
  Ok,
  Refused,  // an answer of the rules: no right, bad input
  Failed    // the server could not
};

class KALVOR_SERVER CallFigures {
 public:
  // The operation is a name of the table of operations or "unknown"; the time is that from the whole call being here
  // to its answer being ready.
  void note(const char* operation, CallOutcome outcome, std::chrono::steady_clock::duration time);
  void noteBadFrame();
  // In the text format of Prometheus: counters by operation and outcome, a histogram of seconds by operation.
  QByteArray text() const;

 private:
  static constexpr size_t bounds = 10;
  struct Row {
    std::array<quint64, 3> outcomes{};
    std::array<quint64, bounds + 1> slots_{};  // by the upper bound; the last has none
    double seconds = 0;
  };

  mutable std::mutex mutex_;
  std::map<std::string, Row> rows_;
  quint64 badFrames_ = 0;
};

}  // namespace kalvor::server
