#include "server/net/job_threads.h"

#include <algorithm>

namespace kalvor::server {

JobThreads::JobThreads(int threads, const OpenConnection& open)
{
  for (int i = 0; i < threads; ++i) {
    connections_.push_back(open());
  }
  for (const auto& connection : connections_) {
    threads_.emplace_back([this, &connection] { run(*connection); });
  }
}

JobThreads::~JobThreads() { stop(); }

void JobThreads::post(Job job)
{
  {
    const std::lock_guard lock(mutex_);
    jobs_.push_back(std::move(job));
  }
  wake_.notify_one();
}

void JobThreads::stop()
{
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
    jobs_.clear();
  }
  wake_.notify_all();
  for (std::thread& thread : threads_) {
    if (thread.joinable()) {
      thread.join();
    }
  }
}

size_t JobThreads::waiting()
{
  const std::lock_guard lock(mutex_);
  return jobs_.size();
}

void JobThreads::run(Connection& connection)
{
  while (true) {
    Job job;
    {
      std::unique_lock lock(mutex_);
      wake_.wait(lock, [this] { return stopping_ || !jobs_.empty(); });
      if (stopping_) {
        return;
      }
      job = std::move(jobs_.front());
      jobs_.pop_front();
    }
    job(connection);
  }
}

WriterThread::WriterThread(const OpenConnection& open) : connection_(open())
{
  thread_ = std::thread([this] { run(); });
}

WriterThread::~WriterThread() { stop(); }

void WriterThread::post(quint64 peer, Job job)
{
  {
    const std::lock_guard lock(mutex_);
    jobs_.emplace_back(peer, std::move(job));
  }
  wake_.notify_one();
}

void WriterThread::setOwner(quint64 peer)
{
  const std::lock_guard lock(mutex_);
  owner_ = peer;
}

void WriterThread::stop()
{
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
    jobs_.clear();
  }
  wake_.notify_one();
  if (thread_.joinable()) {
    thread_.join();
  }
}

size_t WriterThread::waiting()
{
  const std::lock_guard lock(mutex_);
  return jobs_.size();
}

// The first job that may run now. Called with the mutex held.
bool WriterThread::takeJob(Job& job)
{
  const auto found = std::find_if(jobs_.begin(), jobs_.end(),
                                  [this](const auto& entry) { return owner_ == 0 || entry.first == owner_; });
  if (found == jobs_.end()) {
    return false;
  }
  job = std::move(found->second);
  jobs_.erase(found);
  return true;
}

void WriterThread::run()
{
  while (true) {
    Job job;
    {
      std::unique_lock lock(mutex_);
      wake_.wait(lock, [&] { return stopping_ || takeJob(job); });
      if (!job) {
        return;
      }
    }
    job(*connection_);
  }
}

}  // namespace kalvor::server
