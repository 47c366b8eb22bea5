#include "path/WorkerPool.h"

#include <algorithm>
#include <exception>

namespace Orvo::Path {

WorkerPool::WorkerPool(std::size_t workerNb) {
  threads_.reserve(std::max<std::size_t>(workerNb, 1) - 1);
  try {
    for (std::size_t worker = 1; worker < workerNb; ++worker) {
      threads_.emplace_back([this, worker] { Serve(worker); });
    }
  } catch (const std::exception&) {
    // A system that gives no more threads, or no memory for them, leaves the work to those it gave.
  }
}

WorkerPool::~WorkerPool() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    isClosing_ = true;
  }
  started_.notify_all();
  for (std::thread& thread : threads_) {
    thread.join();
  }
}

void WorkerPool::Run(std::size_t itemNb, std::size_t chunk, const Work& work) {
  if (threads_.empty() || itemNb <= chunk) {
    if (itemNb > 0) {
      work(0, 0, itemNb);
    }
    return;
  }
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    work_ = &work;
    itemNb_ = itemNb;
    chunk_ = chunk;
    next_ = 0;
    busyNb_ = threads_.size();
    failure_ = nullptr;
    ++round_;
  }
  started_.notify_all();
  TakeChunks(0);
  std::unique_lock<std::mutex> lock(mutex_);
  ended_.wait(lock, [this] { return busyNb_ == 0; });
  if (failure_ != nullptr) {
    std::rethrow_exception(failure_);
  }
}

void WorkerPool::Serve(std::size_t worker) {
  std::size_t served = 0;
  for (;;) {
    {
      std::unique_lock<std::mutex> lock(mutex_);
      started_.wait(lock, [this, served] { return isClosing_ || round_ != served; });
      if (isClosing_) {
        return;
      }
      served = round_;
    }
    TakeChunks(worker);
    const std::lock_guard<std::mutex> lock(mutex_);
    if (--busyNb_ == 0) {
      ended_.notify_one();
    }
  }
}

void WorkerPool::TakeChunks(std::size_t worker) {
  for (;;) {
    std::size_t begin = 0;
    std::size_t end = 0;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      begin = next_;
      end = std::min(itemNb_, begin + chunk_);
      next_ = end;
    }
    if (begin >= end) {
      return;
    }
    try {
      (*work_)(worker, begin, end);
    } catch (...) {
      const std::lock_guard<std::mutex> lock(mutex_);
      failure_ = failure_ != nullptr ? failure_ : std::current_exception();
      next_ = itemNb_;
    }
  }
}

}  // namespace Orvo::Path
