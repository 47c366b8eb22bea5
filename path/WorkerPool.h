#pragma once

#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace Orvo::Path {

/// Some threads that share the work on a range of items, a chunk at a time.
class WorkerPool {
 public:
  /// The work on the items from begin to end, by the worker of that number.
  using Work = std::function<void(std::size_t worker, std::size_t begin, std::size_t end)>;

  /// @param workerNb  the calling thread is one of them
  explicit WorkerPool(std::size_t workerNb);
  WorkerPool(const WorkerPool&) = delete;
  WorkerPool& operator=(const WorkerPool&) = delete;
  ~WorkerPool();

  std::size_t GetWorkerNb() const { return threads_.size() + 1; }

  /// Does the work on all items; returns when all is done. The first exception is thrown again.
  void Run(std::size_t itemNb, std::size_t chunk, const Work& work);

 private:
  void Serve(std::size_t worker);
  void TakeChunks(std::size_t worker);

  std::vector<std::thread> threads_;
  std::mutex mutex_;
  std::condition_variable started_;
  std::condition_variable ended_;
  const Work* work_ = nullptr;
  std::size_t itemNb_ = 0;
  std::size_t chunk_ = 1;
  std::size_t next_ = 0;
  std::size_t busyNb_ = 0;
  std::size_t round_ = 0;
  bool isClosing_ = false;
  std::exception_ptr failure_;
};

}  // namespace Orvo::Path
