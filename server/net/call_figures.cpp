#include "server/net/call_figures.h"

#include <algorithm>

namespace kalvor::server {

namespace {

constexpr double upperBounds[] = {0.001, 0.0025, 0.005, 0.01, 0.025, 0.1, 0.25, 1, 2.5, 10};
constexpr const char* outcomeNames[] = {"ok", "refused", "failed"};

}  // namespace

void CallFigures::note(const char* operation, CallOutcome outcome, std::chrono::steady_clock::duration time)
{
  static_assert(std::size(upperBounds) == bounds);
  const double seconds = std::chrono::duration<double>(time).count();
  const auto slot = std::lower_bound(std::begin(upperBounds), std::end(upperBounds), seconds) - std::begin(upperBounds);
  const std::lock_guard lock(mutex_);
  Row& row = rows_[operation];
  ++row.outcomes[size_t(outcome)];
  ++row.slots_[size_t(slot)];
  row.seconds += seconds;
}

void CallFigures::noteBadFrame()
{
  const std::lock_guard lock(mutex_);
  ++badFrames_;
}

QByteArray CallFigures::text() const
{
  const std::lock_guard lock(mutex_);
  QByteArray text =
      "# HELP kalvor_requests_total Answered calls.\n"
      "# TYPE kalvor_requests_total counter\n";
  const auto line = [&](const char* name, const std::string& operation, const QByteArray& labels, const QByteArray& value) {
    text += QByteArray(name) + "{operation=\"" + operation.c_str() + '"' + labels + "} " + value + '\n';
  };
  for (const auto& [operation, row] : rows_) {
    for (size_t i = 0; i < row.outcomes.size(); ++i) {
      line("kalvor_requests_total", operation, ",outcome=\"" + QByteArray(outcomeNames[i]) + '"',
           QByteArray::number(row.outcomes[i]));
    }
  }
  text +=
      "# HELP kalvor_request_duration_seconds From the whole call being here to its answer being ready.\n"
      "# TYPE kalvor_request_duration_seconds histogram\n";
  for (const auto& [operation, row] : rows_) {
    quint64 count = 0;
    for (size_t i = 0; i < row.slots_.size(); ++i) {
      count += row.slots_[i];
      const QByteArray bound = i < bounds ? QByteArray::number(upperBounds[i]) : QByteArray("+Inf");
      line("kalvor_request_duration_seconds_bucket", operation, ",le=\"" + bound + '"', QByteArray::number(count));
    }
    line("kalvor_request_duration_seconds_sum", operation, {}, QByteArray::number(row.seconds, 'g', 12));
    line("kalvor_request_duration_seconds_count", operation, {}, QByteArray::number(count));
  }
  text +=
      "# HELP kalvor_bad_frames_total Items that were no call.\n"
      "# TYPE kalvor_bad_frames_total counter\n"
      "kalvor_bad_frames_total " + QByteArray::number(badFrames_) + '\n';
  return text;
}

}  // namespace kalvor::server
