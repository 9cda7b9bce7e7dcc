// The threads that calls run on: a few workers that read, and one that writes. Each has its own connection.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "server/store/connection.h"

namespace kalvor::server {

using Job = std::function<void(Connection&)>;  // must not throw
using OpenConnection = std::function<std::unique_ptr<Connection>()>;

// Jobs in the order they came, on as many threads as asked for.
class KALVOR_SERVER JobThreads {
 public:
  JobThreads(int threads, const OpenConnection& open);
  ~JobThreads();
  void post(Job job);
  void stop();  // waits for the jobs under way; those not begun are dropped
  size_t waiting();

 private:
  void run(Connection& connection);

  std::mutex mutex_;
  std::condition_variable wake_;
  std::deque<Job> jobs_;
  bool stopping_ = false;
  std::vector<std::unique_ptr<Connection>> connections_;
  std::vector<std::thread> threads_;
};

// One thread for everything that writes. A peer may own it for the time of its transaction: until it lets go, only
// its jobs run and the others wait their turn.
class KALVOR_SERVER WriterThread {
 public:
  explicit WriterThread(const OpenConnection& open);
  ~WriterThread();
  void post(quint64 peer, Job job);
  void setOwner(quint64 peer);  // from a job; 0 lets go
  void stop();
  size_t waiting();

 private:
  void run();
  bool takeJob(Job& job);

  std::mutex mutex_;
  std::condition_variable wake_;
  std::deque<std::pair<quint64, Job>> jobs_;
  quint64 owner_ = 0;
  bool stopping_ = false;
  std::unique_ptr<Connection> connection_;
  std::thread thread_;
};

}  // namespace kalvor::server
