#include "platform/thread.hpp"

#include <process.h>

#include <cstdlib>
#include <new>
#include <utility>

#include "platform/windows/windows_api.hpp"

namespace vexa::platform {

struct Thread::Impl {
  explicit Impl(std::function<void()> thread_body) : body(std::move(thread_body)) {}

  /// The thread's handle, which is signalled once the thread has ended.
  struct End : Waitable {
    End() : Waitable(std::make_unique<Waitable::Impl>()) {}
    ~End() = default;
  };

  static unsigned __stdcall Run(void* context) noexcept {
    static_cast<Impl*>(context)->body();
    return 0;
  }

  std::function<void()> body;
  End end;
  unsigned id = 0;
};

Thread::Thread(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}

Thread::~Thread() {
  if (impl_->end.impl().handle.get() != nullptr) {
    Join();
  }
}

Status Thread::Start(ThreadPriority priority, std::function<void()> body,
                     std::unique_ptr<Thread>* thread) {
  thread->reset();
  try {
    std::unique_ptr<Thread> created(new Thread(std::make_unique<Impl>(std::move(body))));
    Impl& impl = *created->impl_;
    _doserrno = 0;
    const std::uintptr_t handle = _beginthreadex(nullptr, 0, &Impl::Run, &impl, 0, &impl.id);
    if (handle == 0) {
      return _doserrno != 0 ? Status(_doserrno) : error::kNotEnoughMemory;
    }
    impl.end.impl().handle = UniqueHandle(reinterpret_cast<HANDLE>(handle));
    ::SetThreadPriority(impl.end.impl().handle.get(), priority == ThreadPriority::kTimeCritical
                                                          ? THREAD_PRIORITY_TIME_CRITICAL
                                                          : THREAD_PRIORITY_HIGHEST);
    *thread = std::move(created);
    return error::kNone;
  } catch (const std::bad_alloc&) {
    return error::kNotEnoughMemory;
  }
}

const Waitable& Thread::Ended() const { return impl_->end; }

void Thread::Join() { Wait(impl_->end); }

std::uint32_t Thread::id() const { return impl_->id; }

bool Thread::IsCurrent() const { return ::GetCurrentThreadId() == impl_->id; }

std::uint32_t CurrentThreadId() { return ::GetCurrentThreadId(); }

}  // namespace vexa::platform
