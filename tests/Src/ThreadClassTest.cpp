#include "Src/ThreadClass.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/ForwardingThreading.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/ScriptedThreading.h"

namespace Vask::Tests {
namespace {

// Runs until it is stopped, and records what happened in which order.
class Worker final : public ThreadClass {
 public:
  explicit Worker(Platform::Threading& threading = Platform::SystemThreading())
      : ThreadClass(threading) {}

  using ThreadClass::HasThread;

  std::vector<std::string> deeds;  // of the hooks and, after the stop, of the body
  std::thread::id bodyThread;
  bool runsUntilStopped = true;

 private:
  void Run() override {
    if (runsUntilStopped) static_cast<void>(m_stop.Wait(Platform::kInfinite));
    bodyThread = std::this_thread::get_id();
    deeds.push_back("body ends");
  }
  void OnStart() override { deeds.push_back("start"); }
  void OnStop() override {
    deeds.push_back("stop");
    m_stop.Set();
  }

  Platform::Event m_stop{Platform::EventReset::Automatic};
};

TEST(ThreadClassTest, RunsTheBodyOnAThreadOfItsOwnUntilStopped) {
  Worker worker;
  EXPECT_FALSE(worker.HasThread());
  ASSERT_TRUE(worker.Start());
  EXPECT_TRUE(worker.HasThread());
  worker.Stop();
  EXPECT_FALSE(worker.HasThread());
  EXPECT_EQ(worker.deeds, (std::vector<std::string>{"start", "stop", "body ends"}));
  EXPECT_NE(worker.bodyThread, std::this_thread::get_id());
}

TEST(ThreadClassTest, ASecondStartIsRefusedAndChangesNothing) {
  Worker worker;
  ASSERT_TRUE(worker.Start());
  EXPECT_FALSE(worker.Start());
  worker.Stop();
  EXPECT_EQ(worker.deeds, (std::vector<std::string>{"start", "stop", "body ends"}));
}

TEST(ThreadClassTest, CanBeStartedAgainAfterStop) {
  Worker worker;
  for (int i = 0; i < 20; ++i) {
    ASSERT_TRUE(worker.Start());
    worker.Stop();
  }
  EXPECT_EQ(worker.deeds.size(), 60u);
}

TEST(ThreadClassTest, StopWithoutAThreadDoesNothing) {
  Worker worker;
  worker.Stop();
  EXPECT_TRUE(worker.deeds.empty());
}

TEST(ThreadClassTest, StopJoinsABodyThatEndedByItself) {
  ScriptedThreading threading;
  Worker worker(threading);
  worker.runsUntilStopped = false;
  ASSERT_TRUE(worker.Start());
  EXPECT_TRUE(worker.HasThread());
  worker.Stop();
  EXPECT_EQ(threading.joined, 1u);
  EXPECT_EQ(threading.closedThreads.size(), 1u);
  EXPECT_EQ(worker.deeds, (std::vector<std::string>{"start", "body ends", "stop"}));
}

TEST(ThreadClassTest, ABodyThatEndsByItselfNeedsNoHooks) {
  class Errand final : public ThreadClass {
   public:
    std::atomic<bool> isDone{false};

   private:
    void Run() override { isDone = true; }
  };
  Errand errand;
  ASSERT_TRUE(errand.Start());
  errand.Stop();
  EXPECT_TRUE(errand.isDone);
}

TEST(ThreadClassTest, AThreadThatCannotBeCreatedHasNoTask) {
  ScriptedThreading threading;
  threading.nextThread = nullptr;
  Worker worker(threading);
  EXPECT_FALSE(worker.Start());
  EXPECT_FALSE(worker.HasThread());
  EXPECT_EQ(worker.deeds, std::vector<std::string>{"start"});
  worker.Stop();
  EXPECT_EQ(threading.joined, 0u);
}

TEST(ThreadClassTest, WithoutEventsNoThreadIsStarted) {
  ScriptedThreading threading;
  threading.createsEvents = false;
  Worker worker(threading);
  EXPECT_FALSE(worker.Start());
  EXPECT_EQ(threading.started, 0u);
}

// Creates the n-th event only, however often it is asked, and never a thread.
class OneEventThreading final : public ForwardingThreading {
 public:
  explicit OneEventThreading(int created) : m_created(created) {}
  int started = 0;

  Platform::NativeHandle CreateEvent(Platform::EventReset reset) noexcept override {
    return ++m_asked == m_created ? ForwardingThreading::CreateEvent(reset) : nullptr;
  }
  Platform::NativeHandle StartThread(const Platform::ThreadEntry&) noexcept override {
    ++started;
    return nullptr;
  }

 private:
  const int m_created;
  int m_asked = 0;
};

TEST(ThreadClassTest, WithOneOfItsTwoEventsNoThreadIsStarted) {
  for (const int created : {1, 2}) {
    OneEventThreading threading(created);
    Worker worker(threading);
    EXPECT_FALSE(worker.Start()) << created;
    EXPECT_EQ(threading.started, 0) << created;
    EXPECT_TRUE(worker.deeds.empty()) << created;
  }
}

// Logs in its destructor.
class Mourner final : public ThreadClass, public Thread::SingletonRef<Mourner> {
 public:
  ~Mourner() override { LogPrinter::Instance().Info("last words\n"); }

 private:
  void Run() override {}
};

TEST(ThreadClassTest, ThePrinterLivesLongerThanASingletonWithAThread) {
  Thread::DestroySingletons();
  Mourner::Instance();
  RecordingLog log;  // asks for the printer
  Thread::DestroySingletons();
  EXPECT_EQ(log.Lines(), std::vector<std::string>{"Info: last words\n"});
}

TEST(ThreadClassTest, DestructionWithAThreadIsReportedAndContinues) {
  ScriptedThreading threading;
  RecordingLog log;
  {
    Worker worker(threading);
    worker.runsUntilStopped = false;
    ASSERT_TRUE(worker.Start());
  }
  EXPECT_EQ(log.Lines(),
            std::vector<std::string>{
                "Error: +++ ASSERT(m_pTask==0) failed at ..\\..\\Src\\ThreadClass(26)\n"});
}

TEST(ThreadClassTest, DestructionWithoutAThreadReportsNothing) {
  RecordingLog log;
  { Worker worker; }
  EXPECT_TRUE(log.Lines().empty());
}

}  // namespace
}  // namespace Vask::Tests
