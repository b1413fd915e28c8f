#include "platform/thread.hpp"

#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <unistd.h>

#include <new>
#include <system_error>
#include <thread>
#include <utility>

namespace vexa::platform {
namespace {

/// Keeps all signals away from threads that are created meanwhile: an application's handlers run
/// on the application's own threads.
class SignalBlock {
 public:
  SignalBlock() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &previous_);
  }
  ~SignalBlock() { pthread_sigmask(SIG_SETMASK, &previous_, nullptr); }
  SignalBlock(const SignalBlock&) = delete;
  SignalBlock& operator=(const SignalBlock&) = delete;

 private:
  sigset_t previous_;
};

/// Gives the calling thread its name (15 characters at most) and its priority, as far as the
/// system allows. Time-critical threads come before highest ones; both stay in the lower quarter
/// of the real-time range, below what audio servers and interrupt threads use. Threads that the
/// application creates in a callback start as ordinary ones.
void Introduce(ThreadPriority priority) {
  const bool critical = priority == ThreadPriority::kTimeCritical;
  pthread_setname_np(pthread_self(), critical ? "vexa-critical" : "vexa-highest");
  sched_param parameters{};
  parameters.sched_priority = sched_get_priority_min(SCHED_RR) + (critical ? 19 : 9);
  sched_setscheduler(0, SCHED_RR | SCHED_RESET_ON_FORK, &parameters);
}

Status FromErrno(const std::error_code& code) {
  if (code == std::errc::resource_unavailable_try_again || code == std::errc::not_enough_memory) {
    return error::kNotEnoughMemory;
  }
  return code == std::errc::operation_not_permitted ? error::kAccessDenied : error::kGeneralFailure;
}

}  // namespace

struct Thread::Impl {
  explicit Impl(std::function<void()> thread_body) : body(std::move(thread_body)) {}

  void Run(ThreadPriority priority) noexcept {
    id = CurrentThreadId();
    started.Set();
    Introduce(priority);
    body();
    ended.Set();
  }

  std::function<void()> body;
  Event started;  // id is known
  Event ended;
  std::uint32_t id = 0;
  std::thread thread;
};

Thread::Thread(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}

Thread::~Thread() {
  if (impl_->thread.joinable()) {
    impl_->thread.join();
  }
}

Status Thread::Start(ThreadPriority priority, std::function<void()> body,
                     std::unique_ptr<Thread>* thread) {
  thread->reset();
  try {
    std::unique_ptr<Thread> created(new Thread(std::make_unique<Impl>(std::move(body))));
    Impl& impl = *created->impl_;
    {
      const SignalBlock block;
      impl.thread = std::thread([&impl, priority] { impl.Run(priority); });
    }
    Wait(impl.started);
    *thread = std::move(created);
    return error::kNone;
  } catch (const std::bad_alloc&) {
    return error::kNotEnoughMemory;
  } catch (const std::system_error& failure) {
    return FromErrno(failure.code());
  }
}

const Waitable& Thread::Ended() const { return impl_->ended; }

void Thread::Join() { Wait(impl_->ended); }

std::uint32_t Thread::id() const { return impl_->id; }

bool Thread::IsCurrent() const { return impl_->thread.get_id() == std::this_thread::get_id(); }

std::uint32_t CurrentThreadId() { return static_cast<std::uint32_t>(gettid()); }

}  // namespace vexa::platform
