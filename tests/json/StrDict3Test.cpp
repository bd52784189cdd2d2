#include "json/StrDict3.h"

#include <gtest/gtest.h>

#include <array>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace Vask {
namespace {

using Dictionary = StrDict3<int>;
using Node = Dictionary::Node;

// The value under a key, or -1.
int Value(const Dictionary& dictionary, const char* key) {
  const int* value = dictionary.FindValue(key);
  return value != nullptr ? *value : -1;
}

// The node at the end of a key's path, or null.
const Node* Found(const Dictionary& dictionary, const char* key) {
  const Node* node = nullptr;
  return dictionary.Find(key, node) ? node : nullptr;
}

bool Collect(const char* key, const int* value, void* context) {
  *static_cast<std::string*>(context) += std::string(key) + "=" + std::to_string(*value) + " ";
  return true;
}

// All pairs in the dictionary's order.
std::string Pairs(const Dictionary& dictionary) {
  std::string pairs;
  EXPECT_TRUE(dictionary.ForEach("", &Collect, &pairs));
  return pairs;
}

TEST(StrDict3, InsertedValuesAreFound) {
  Dictionary dictionary;
  EXPECT_TRUE(dictionary.Empty());
  EXPECT_TRUE(dictionary.Insert("count", 1));
  EXPECT_TRUE(dictionary.Insert("errors", 2));
  EXPECT_FALSE(dictionary.Empty());
  EXPECT_EQ(Value(dictionary, "count"), 1);
  EXPECT_EQ(Value(dictionary, "errors"), 2);
  EXPECT_EQ(Value(dictionary, "silence"), -1);
}

TEST(StrDict3, SpellingsOfOneKeyShareOneValue) {
  Dictionary dictionary;
  dictionary.Insert("Name", 1);
  dictionary.Insert("name", 2);
  EXPECT_EQ(Pairs(dictionary), "name=2 ");
  EXPECT_EQ(Value(dictionary, "NAME"), 2);
}

TEST(StrDict3, FoldsAsItsSettingsRequire) {
  struct Row {
    const char* name;
    bool caseSensitive;
    bool foldToUpper;
    const char* pairs;
  };
  for (const Row& row :
       {Row{"ToLower", false, false, "[k]az{=2 "}, Row{"ToUpper", false, true, "[K]AZ{=2 "},
        Row{"Kept", true, false, "[K]aZ{=1 [k]Az{=2 "},
        Row{"KeptWhateverTheOther", true, true, "[K]aZ{=1 [k]Az{=2 "}}) {
    Dictionary dictionary(row.caseSensitive, row.foldToUpper);
    dictionary.Insert("[K]aZ{", 1);
    dictionary.Insert("[k]Az{", 2);
    EXPECT_EQ(Pairs(dictionary), row.pairs) << row.name;
  }
}

TEST(StrDict3, OnlyAsciiLettersFold) {
  Dictionary dictionary;
  for (unsigned c = 1; c < 256; ++c) {
    const char key[] = {static_cast<char>(c), '\0'};
    dictionary.Insert(key, static_cast<int>(c));
  }
  for (unsigned c = 1; c < 256; ++c) {
    const char key[] = {static_cast<char>(c), '\0'};
    const bool upper = c >= 'A' && c <= 'Z';
    EXPECT_EQ(Value(dictionary, key), static_cast<int>(upper ? c + 32 : c)) << c;
  }
}

TEST(StrDict3, NullAndEmptyKeysAreRefusedAndNeverFound) {
  Dictionary dictionary;
  const Node* node = nullptr;
  EXPECT_FALSE(dictionary.Insert("", 1));
  EXPECT_FALSE(dictionary.Insert(nullptr, 1));
  EXPECT_TRUE(dictionary.Empty());
  EXPECT_FALSE(dictionary.Find("a", node));
  dictionary.Insert("a", 1);
  EXPECT_FALSE(dictionary.Find("", node));
  EXPECT_FALSE(dictionary.Find(nullptr, node));
  EXPECT_EQ(node, nullptr);
  EXPECT_EQ(Pairs(dictionary), "a=1 ");
}

TEST(StrDict3, PrefixOfAKeyHasANodeWithoutValue) {
  Dictionary dictionary;
  dictionary.Insert("abc", 1);
  const Node* node = nullptr;
  ASSERT_TRUE(dictionary.Find("ab", node));
  EXPECT_EQ(node->hasValue, 0);
  EXPECT_EQ(dictionary.FindValue("ab"), nullptr);
  ASSERT_TRUE(dictionary.Find("abc", node));
  EXPECT_EQ(node->hasValue, 1);
  EXPECT_EQ(node->value, 1);
  EXPECT_FALSE(dictionary.Find("abcd", node));
  EXPECT_FALSE(dictionary.Find("abd", node));
  EXPECT_FALSE(dictionary.Find("b", node));
}

TEST(StrDict3, KeyMayExtendOrCutAnother) {
  Dictionary dictionary;
  for (const char* key : {"abc", "a", "abcde", "abd"}) dictionary.Insert(key, 7);
  EXPECT_EQ(Pairs(dictionary), "a=7 abc=7 abcde=7 abd=7 ");
}

TEST(StrDict3, KeysMayBranchOffAnywhereInALongerOne) {
  const std::string longest = "abcdefghijklmnopqrstuvwxyz0123456789";
  for (std::size_t at = 1; at < longest.size(); ++at) {
    Dictionary dictionary;
    dictionary.Insert(longest.c_str(), 1);
    const std::string cut = longest.substr(0, at);
    dictionary.Insert((cut + "~").c_str(), 2);
    EXPECT_EQ(dictionary.FindValue(cut.c_str()), nullptr);
    dictionary.Insert(cut.c_str(), 3);
    dictionary.Insert((cut + "!").c_str(), 4);
    EXPECT_EQ(Pairs(dictionary), cut + "=3 " + cut + "!=4 " + longest + "=1 " + cut + "~=2 ");
    EXPECT_EQ(Value(dictionary, longest.c_str()), 1) << cut;
    EXPECT_EQ(Value(dictionary, (cut + "!").c_str()), 4) << cut;
    EXPECT_EQ(Value(dictionary, (longest + "x").c_str()), -1) << cut;
  }
}

constexpr std::size_t kLongestKey = 65535;

TEST(StrDict3, KeysAreCutAtTheirLimit) {
  const std::string most(kLongestKey, 'k');
  Dictionary dictionary;
  dictionary.Insert((most + "x").c_str(), 1);
  EXPECT_EQ(Value(dictionary, most.c_str()), 1);
  EXPECT_EQ(Value(dictionary, (most + "anything").c_str()), 1);
  dictionary.Insert((most + "y").c_str(), 2);  // along the same path
  EXPECT_EQ(Value(dictionary, most.c_str()), 2);
  const std::string less(kLongestKey - 1, 'k');
  EXPECT_EQ(Value(dictionary, less.c_str()), -1);
  dictionary.Insert((less + "z").c_str(), 3);
  EXPECT_EQ(Value(dictionary, most.c_str()), 2);
  EXPECT_EQ(Value(dictionary, (less + "z").c_str()), 3);
}

TEST(StrDict3, PathMadeInPiecesIsThatOfTheKey) {
  Dictionary dictionary;
  Dictionary::Path path(dictionary);
  EXPECT_EQ(path.End(), nullptr);
  path.Append("Na");
  path.Append('M');
  path.Append("e");
  path.End()->value = 5;
  path.End()->hasValue = 1;
  EXPECT_EQ(Pairs(dictionary), "name=5 ");
}

TEST(StrDict3, PathStopsAtTheEndsOfItsFolding) {
  Dictionary dictionary;
  const KeyFolding untilQuote(KeyFolding::Letters::ToLower, "\"");
  Dictionary::Path path(dictionary);
  const char* text = "AB\"C";
  EXPECT_EQ(path.Append(text, untilQuote), text + 2);
  EXPECT_EQ(path.Append(text + 2, untilQuote), text + 2);
  EXPECT_EQ(path.End(), Found(dictionary, "ab"));
  const std::string tooLong = std::string(kLongestKey, 'x') + "\"";
  EXPECT_EQ(*path.Append(tooLong.c_str(), untilQuote), '"');
  EXPECT_EQ(*path.Append(tooLong.c_str(), untilQuote), '"');
}

TEST(StrDict3, LongPathsAreDestroyedWithoutRecursion) {
  StrDict3<int>::StandardAllocator nodes;
  {
    Dictionary dictionary(&nodes);
    dictionary.Insert(std::string(kLongestKey, 'k').c_str(), 1);
    EXPECT_EQ(nodes.NodesInUse(), (kLongestKey + 15) / 16);
  }
  EXPECT_EQ(nodes.NodesInUse(), 0u);
}

TEST(StrDict3Allocator, ProvidesBlocksOfSixteenAndRecyclesNodes) {
  Dictionary::Allocator<16> nodes;
  EXPECT_EQ(nodes.Blocks(), 0u);
  std::vector<Node*> taken;
  for (int i = 0; i < 16; ++i) taken.push_back(nodes.AllocNode());
  EXPECT_EQ(nodes.Blocks(), 1u);
  EXPECT_EQ(nodes.NodesProvided(), 16u);
  EXPECT_EQ(nodes.NodesInUse(), 16u);
  taken.push_back(nodes.AllocNode());
  EXPECT_EQ(nodes.Blocks(), 2u);
  EXPECT_EQ(nodes.NodesProvided(), 32u);
  nodes.FreeNode(taken.back());
  EXPECT_EQ(nodes.NodesInUse(), 16u);
  EXPECT_EQ(nodes.AllocNode(), taken.back());
  for (Node* node : taken) nodes.FreeNode(node);
  EXPECT_EQ(nodes.NodesInUse(), 0u);
  EXPECT_EQ(nodes.Blocks(), 2u);
}

TEST(StrDict3Allocator, FreedNodesAreUsedBeforeTheRestOfTheirBlock) {
  Dictionary::Allocator<16> nodes;
  Node* freed[] = {nodes.AllocNode(), nodes.AllocNode()};
  for (Node* node : freed) nodes.FreeNode(node);
  EXPECT_EQ(nodes.NodesInUse(), 0u);
  std::set<Node*> taken{nodes.AllocNode(), nodes.AllocNode()};
  EXPECT_EQ(taken, std::set<Node*>(std::begin(freed), std::end(freed)));
  while (taken.size() < 16) EXPECT_TRUE(taken.insert(nodes.AllocNode()).second);
  EXPECT_EQ(nodes.Blocks(), 1u);
  EXPECT_EQ(nodes.NodesInUse(), 16u);
}

TEST(StrDict3Allocator, RecycledNodesAreLikeNewOnes) {
  Dictionary::StandardAllocator nodes;
  {
    Dictionary first(&nodes);
    for (const char* key : {"abc", "abd", "b", "xyz"}) first.Insert(key, 9);
  }
  EXPECT_EQ(nodes.NodesInUse(), 0u);
  Dictionary second(&nodes);
  second.Insert("one two", 1);
  EXPECT_EQ(Pairs(second), "one two=1 ");
  EXPECT_EQ(second.FindValue("one"), nullptr);
  EXPECT_EQ(nodes.Blocks(), 1u);
}

// Returns nodes with arbitrary contents, one at a time, and counts them.
class RubbishAllocator final : public Dictionary::IAllocator {
 public:
  Node* AllocNode() override {
    ++allocated;
    return new Node{'x', 7, reinterpret_cast<Node*>(1), reinterpret_cast<Node*>(1), 99, 77, 1};
  }
  void FreeNode(Node* node) noexcept override {
    ++freed;
    delete node;
  }

  int allocated = 0;
  int freed = 0;
};

TEST(StrDict3Allocator, EveryNodeReturnsToItsAllocator) {
  RubbishAllocator nodes;
  {
    Dictionary dictionary(&nodes);
    for (const char* key : {"stream", "streams", "string", "a"}) dictionary.Insert(key, 1);
    EXPECT_EQ(Pairs(dictionary), "a=1 stream=1 streams=1 string=1 ");
    EXPECT_EQ(nodes.allocated, 1 + 1 + 2 + 1);  // "str" "eam" "s", "ing", "a"
  }
  EXPECT_EQ(nodes.freed, nodes.allocated);
}

TEST(StrDict3Allocator, OneAllocatorServesTwoDictionaries) {
  Dictionary::StandardAllocator nodes;
  Dictionary first(&nodes);
  Dictionary second(&nodes, true);
  first.Insert("ab", 1);
  second.Insert("AB", 2);
  first.Insert("cd", 3);
  EXPECT_EQ(Pairs(first), "ab=1 cd=3 ");
  EXPECT_EQ(Pairs(second), "AB=2 ");
  first.Clear();
  EXPECT_TRUE(first.Empty());
  EXPECT_EQ(nodes.NodesInUse(), 1u);
}

}  // namespace
}  // namespace Vask
