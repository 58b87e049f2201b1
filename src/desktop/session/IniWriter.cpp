#include "desktop/session/IniWriter.h"

#include <condition_variable>
#include <mutex>
#include <utility>

#include "desktop/session/IniFile.h"

namespace valdrix::desktop {

namespace {

using Clock = std::chrono::steady_clock;

/// Changes that follow each other faster are one.
constexpr std::chrono::milliseconds quiet{300};
constexpr std::chrono::seconds longestFarewell{2};

}  // namespace

struct IniWriter::Shared {
  std::filesystem::path file;
  std::mutex mutex;
  std::condition_variable changed;
  // All guarded by the mutex.
  std::function<void()> onResult;
  IniDocument::Values unsaved;
  std::vector<Result> results;
  Clock::time_point due;
  bool isRequested = false;
  bool isWriting = false;
  bool isEnding = false;
};

IniWriter::IniWriter(std::filesystem::path file, std::function<void()> onResult)
    : shared_(std::make_shared<Shared>()) {
  shared_->file = std::move(file);
  shared_->onResult = std::move(onResult);
}

IniWriter::~IniWriter() {
  if (!thread_.joinable()) return;
  {
    const std::lock_guard lock(shared_->mutex);
    shared_->onResult = {};
    shared_->isEnding = true;
  }
  finish(longestFarewell) ? thread_.join() : thread_.detach();
}

void IniWriter::set(std::string_view key, std::string value) {
  const std::lock_guard lock(shared_->mutex);
  shared_->unsaved.insert_or_assign(std::string(key), std::move(value));
  request();
}

void IniWriter::mend() {
  const std::lock_guard lock(shared_->mutex);
  request();
}

void IniWriter::request() {
  shared_->isRequested = true;
  shared_->due = Clock::now() + quiet;
  if (!thread_.joinable()) thread_ = std::thread([shared = shared_] { run(*shared); });
  shared_->changed.notify_all();
}

bool IniWriter::finish(std::chrono::milliseconds patience) {
  std::unique_lock lock(shared_->mutex);
  shared_->due = {};
  shared_->changed.notify_all();
  return shared_->changed.wait_for(lock, patience,
                                   [this] { return !shared_->isRequested && !shared_->isWriting; });
}

std::vector<IniWriter::Result> IniWriter::takeResults() {
  const std::lock_guard lock(shared_->mutex);
  return std::exchange(shared_->results, {});
}

void IniWriter::run(Shared& shared) {
  std::unique_lock lock(shared.mutex);
  for (;;) {
    shared.changed.wait(lock, [&] { return shared.isRequested || shared.isEnding; });
    if (!shared.isRequested) return;
    while (Clock::now() < shared.due)
      shared.changed.wait_until(lock, Clock::time_point(shared.due));
    shared.isRequested = false;
    shared.isWriting = true;
    Result result{std::exchange(shared.unsaved, {}), false};
    lock.unlock();
    result.isSaved = saveToIniFile(shared.file, result.values);
    lock.lock();
    shared.isWriting = false;
    // What was set meanwhile is newer.
    if (!result.isSaved) shared.unsaved.insert(result.values.begin(), result.values.end());
    shared.results.push_back(std::move(result));
    shared.changed.notify_all();
    if (shared.onResult) shared.onResult();
  }
}

}  // namespace valdrix::desktop
