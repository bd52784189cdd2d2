#include "Src/SingletonRef.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace Vask::Tests {
namespace {

using Thread::DestroySingletons;
using Thread::SingletonRef;

// What the singletons below did, in order: "+A" is a construction, "-A" a destruction.
std::vector<std::string>& Deeds() {
  static std::vector<std::string> deeds;
  return deeds;
}

template <char kName>
struct Noting : SingletonRef<Noting<kName>> {
  Noting() { Deeds().push_back(std::string("+") + kName); }
  ~Noting() { Deeds().push_back(std::string("-") + kName); }
};
using A = Noting<'A'>;
using B = Noting<'B'>;
using C = Noting<'C'>;

// Asks for B while it is constructed and again while it is destroyed.
struct UsesB : SingletonRef<UsesB> {
  UsesB() {
    B::Instance();
    Deeds().push_back("+UsesB");
  }
  ~UsesB() {
    B::Instance();
    Deeds().push_back("-UsesB");
  }
};

struct AsksForAWhenItGoes : SingletonRef<AsksForAWhenItGoes> {
  ~AsksForAWhenItGoes() {
    A::Instance();
    Deeds().push_back("-Asks");
  }
};

class SingletonRefTest : public testing::Test {
 protected:
  SingletonRefTest() {
    DestroySingletons();
    Deeds().clear();
  }
  ~SingletonRefTest() override { DestroySingletons(); }
};

TEST_F(SingletonRefTest, TheInstanceIsBuiltOnFirstUseAndStaysTheSame) {
  EXPECT_TRUE(Deeds().empty());
  A& first = A::Instance();
  EXPECT_EQ(&first, &A::Instance());
  EXPECT_EQ(Deeds(), std::vector<std::string>{"+A"});
}

TEST_F(SingletonRefTest, InstancesAreDestroyedInReverseOrderOfConstruction) {
  B::Instance();
  C::Instance();
  A::Instance();
  B::Instance();
  DestroySingletons();
  EXPECT_EQ(Deeds(), (std::vector<std::string>{"+B", "+C", "+A", "-A", "-C", "-B"}));
}

TEST_F(SingletonRefTest, AnInstanceThatAConstructorUsesLivesLonger) {
  UsesB::Instance();
  DestroySingletons();
  EXPECT_EQ(Deeds(), (std::vector<std::string>{"+B", "+UsesB", "-UsesB", "-B"}));
}

TEST_F(SingletonRefTest, ADestructorThatUsesADestroyedInstanceGetsANewOneThatIsDestroyedToo) {
  AsksForAWhenItGoes::Instance();
  A::Instance();
  DestroySingletons();
  EXPECT_EQ(Deeds(), (std::vector<std::string>{"+A", "-A", "+A", "-Asks", "-A"}));
}

TEST_F(SingletonRefTest, AfterDestructionANewInstanceIsBuilt) {
  A::Instance();
  DestroySingletons();
  A::Instance();
  EXPECT_EQ(Deeds(), (std::vector<std::string>{"+A", "-A", "+A"}));
}

TEST_F(SingletonRefTest, DestroyingNothingDoesNothing) {
  DestroySingletons();
  DestroySingletons();
  EXPECT_TRUE(Deeds().empty());
}

// Its constructor takes so long that a second thread has time to start another one.
struct Slow : SingletonRef<Slow> {
  Slow() {
    ++constructed;
    std::unique_lock lock(mutex);
    changed.wait_for(lock, std::chrono::milliseconds(200), [] { return constructed > 1; });
    changed.notify_all();
  }

  static inline std::atomic<int> constructed{0};
  static inline std::mutex mutex;
  static inline std::condition_variable changed;
};

TEST_F(SingletonRefTest, ThreadsThatAskAtTheSameTimeGetOneInstance) {
  Slow::constructed = 0;
  std::array<Slow*, 4> seen{};
  // No std::latch: with mingw-w64's C++ library a thread of it may wait for ever.
  std::atomic<size_t> missing{seen.size()};
  std::vector<std::thread> threads;
  for (Slow*& instance : seen) {
    threads.emplace_back([&instance, &missing] {
      --missing;
      while (missing > 0) std::this_thread::yield();
      instance = &Slow::Instance();
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(seen, testing::Each(&Slow::Instance()));
  EXPECT_EQ(Slow::constructed, 1);
}

struct Loud : SingletonRef<Loud> {
  ~Loud() { std::fputs("destroyed\n", stderr); }
};

TEST(SingletonRefDeathTest, TheEndOfTheProcessDestroysNoInstance) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        Loud::Instance();
        std::exit(0);
      },
      testing::ExitedWithCode(0), testing::Not(testing::HasSubstr("destroyed")));
}

}  // namespace
}  // namespace Vask::Tests
