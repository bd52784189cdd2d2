#include "Src/SingletonRef.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
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

TEST_F(SingletonRefTest, ThreadsThatAskAtTheSameTimeGetOneInstance) {
  std::array<A*, 4> seen{};
  std::vector<std::thread> threads;
  for (A*& instance : seen) threads.emplace_back([&instance] { instance = &A::Instance(); });
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(seen, testing::Each(&A::Instance()));
  EXPECT_EQ(Deeds(), std::vector<std::string>{"+A"});
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
