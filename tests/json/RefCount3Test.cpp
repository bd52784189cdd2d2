#include "json/RefCount3.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "json/JsonRef.h"

namespace Vask {
namespace {

// Counts its deletions. The second constructor makes an object that is not deleted, and
// that counts its last releases.
class Shared final : public RefCount3 {
 public:
  explicit Shared(int& deletions) : m_deletions(&deletions) {}
  Shared(int& deletions, int& lastReleases)
      : RefCount3(false), m_deletions(&deletions), m_lastReleases(&lastReleases) {}
  ~Shared() override { ++*m_deletions; }

 private:
  void OnLastRelease() noexcept override { ++*m_lastReleases; }

  int* m_deletions;
  int* m_lastReleases = nullptr;
};

TEST(RefCount3, ObjectThatIsNotDeletedMayIgnoreItsLastRelease) {
  class OnTheStack final : public RefCount3 {
   public:
    OnTheStack() : RefCount3(false) {}
  };
  OnTheStack object;
  object.AddRef();
  object.Release();
  object.Release();
  EXPECT_EQ(object.RefCount(), 0);
}

TEST(RefCount3, CreatorHoldsTheFirstReference) {
  int deletions = 0;
  auto* shared = new Shared(deletions);
  EXPECT_EQ(shared->RefCount(), 1);
  EXPECT_EQ(deletions, 0);
  shared->Release();
  EXPECT_EQ(deletions, 1);
}

TEST(RefCount3, OnlyTheLastReleaseDeletes) {
  int deletions = 0;
  auto* shared = new Shared(deletions);
  shared->AddRef();
  shared->AddRef();
  EXPECT_EQ(shared->RefCount(), 3);
  shared->Release();
  shared->Release();
  EXPECT_EQ(deletions, 0);
  EXPECT_EQ(shared->RefCount(), 1);
  shared->Release();
  EXPECT_EQ(deletions, 1);
}

TEST(RefCount3, LastReleaseOfAKeptObjectIsOnlyReported) {
  int deletions = 0;
  int lastReleases = 0;
  {
    const auto kept = std::make_unique<Shared>(deletions, lastReleases);
    kept->AddRef();
    kept->Release();
    EXPECT_EQ(lastReleases, 0);
    kept->Release();
    EXPECT_EQ(lastReleases, 1);
    EXPECT_EQ(deletions, 0);
  }
  EXPECT_EQ(deletions, 1);
}

TEST(RefCount3, ReleasesOfManyThreadsDeleteOnce) {
  constexpr int kThreads = 4;
  constexpr int kReferences = 10'000;
  int deletions = 0;
  auto* shared = new Shared(deletions);
  for (int i = 0; i < kThreads; ++i) shared->AddRef();
  const auto churn = [shared] {
    for (int i = 0; i < kReferences; ++i) shared->AddRef();
    for (int i = 0; i < kReferences + 1; ++i) shared->Release();
  };
  {
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) threads.emplace_back(churn);
    for (std::thread& thread : threads) thread.join();
  }
  EXPECT_EQ(deletions, 0);
  EXPECT_EQ(shared->RefCount(), 1);
  shared->Release();
  EXPECT_EQ(deletions, 1);
}

TEST(RefCount3, LastReleaseOfAKeptObjectSeesNoReference) {
  class Kept final : public RefCount3 {
   public:
    Kept() : RefCount3(false) {}
    std::int32_t seen = -1;

   private:
    void OnLastRelease() noexcept override { seen = RefCount(); }
  };
  Kept object;
  object.Release();
  EXPECT_EQ(object.seen, 0);
}

TEST(JsonRef, ReleasesAtTheEndOfItsScope) {
  int deletions = 0;
  {
    JsonRef<Shared> ref(new Shared(deletions));
    EXPECT_TRUE(ref);
    EXPECT_EQ(ref->RefCount(), 1);
    EXPECT_EQ((*ref).RefCount(), 1);
  }
  EXPECT_EQ(deletions, 1);
}

TEST(JsonRef, MovingPassesTheReferenceOn) {
  int first = 0;
  int second = 0;
  JsonRef<Shared> a(new Shared(first));
  JsonRef<Shared> b(new Shared(second));
  Shared* object = a.Get();
  b = std::move(a);
  EXPECT_EQ(second, 1);
  EXPECT_EQ(b.Get(), object);
  JsonRef<Shared> c(std::move(b));
  EXPECT_FALSE(b);  // NOLINT(bugprone-use-after-move): empty is what is promised
  EXPECT_EQ(c.Get(), object);
  EXPECT_EQ(first, 0);
  c.Reset(nullptr);
  EXPECT_EQ(first, 1);
}

TEST(JsonRef, DetachedObjectBelongsToTheCaller) {
  int deletions = 0;
  Shared* object = nullptr;
  {
    JsonRef<Shared> ref(new Shared(deletions));
    object = ref.Detach();
    EXPECT_FALSE(ref);
  }
  EXPECT_EQ(deletions, 0);
  object->Release();
  EXPECT_EQ(deletions, 1);
}

}  // namespace
}  // namespace Vask
