#include <functional>
#include <string>

#include "json/JsonArray.h"
#include "json/JsonObject.h"
#include "json/JsonParser.h"
#include "json/JsonRef.h"
#include "tests/json/BalancedTest.h"
#include "tests/support/SmallStack.h"

// Texts with a million levels, on a stack that recursion would exceed after a few
// thousand levels.

namespace Vask {
namespace {

using DeepNestingTest = Tests::BalancedTest;

constexpr std::size_t kStackBytes = 256 * 1024;
constexpr std::size_t kDepth = 1'000'000;

std::string Repeated(std::string_view part, std::size_t times) {
  std::string text;
  text.reserve(part.size() * times);
  for (std::size_t i = 0; i < times; ++i) text += part;
  return text;
}

std::string Nested(std::string_view open, std::string_view value, std::string_view close,
                   std::size_t depth = kDepth) {
  return Repeated(open, depth).append(value).append(Repeated(close, depth));
}

void OnSmallStack(const std::function<void()>& body) {
  ASSERT_TRUE(Tests::RunOnSmallStack(kStackBytes, body));
}

TEST_F(DeepNestingTest, ArraysAreParsedWrittenAndReleased) {
  OnSmallStack([] {
    const std::string text = Nested("[", "1", "]");
    ParseResult result;
    JsonRef<Json> root(Parse(result, text.c_str()));
    ASSERT_TRUE(root) << result.errorMessage;
    std::string written;
    root->Write(written);
    EXPECT_EQ(written, text);
  });
}

TEST_F(DeepNestingTest, ObjectsAreParsedWrittenAndReleased) {
  OnSmallStack([] {
    const std::string text = Nested("{\"a\":", "null", "}", kDepth / 4);
    ParseResult result;
    JsonRef<Json> root(Parse(result, text.c_str()));
    ASSERT_TRUE(root) << result.errorMessage;
    std::string written;
    root->Write(written);
    EXPECT_EQ(written, text);
  });
}

TEST_F(DeepNestingTest, AlternatingKindsWithSiblingsAreParsedAndReleased) {
  OnSmallStack([] {
    const std::string text = Nested("[0,{\"a\":1,\"b\":", "null", ",\"c\":2},3]", kDepth / 8);
    ParseResult result;
    JsonRef<Json> root(Parse(result, text.c_str()));
    ASSERT_TRUE(root) << result.errorMessage;
    std::string written;
    root->Write(written);
    EXPECT_EQ(written, text);
  });
}

TEST_F(DeepNestingTest, TextThatEndsInTheMiddleIsReleased) {
  OnSmallStack([] {
    ParseResult result;
    EXPECT_EQ(Parse(result, Repeated("[", kDepth).c_str()), nullptr);
    EXPECT_EQ(result.errorMessage, "Unexpected token");
    EXPECT_EQ(result.column, kDepth + 1);
  });
}

TEST_F(DeepNestingTest, TreesBuiltByHandAreReleased) {
  OnSmallStack([] {
    JsonRef<Json> tree(new JsonArray);
    for (std::size_t i = 0; i < kDepth; ++i) {
      JsonRef<JsonArray> outer(new JsonArray);
      outer->AppendAdopted(tree.Detach());
      tree.Reset(outer.Detach());
    }
    EXPECT_EQ(tree->RefCount(), 1);
  });
}

TEST_F(DeepNestingTest, IndentedFormIsWrittenFromADeepTree) {
  constexpr std::size_t kPrettyDepth = 3'000;
  OnSmallStack([] {
    ParseResult result;
    JsonRef<Json> root(Parse(result, Nested("[", "1", "]", kPrettyDepth).c_str()));
    ASSERT_TRUE(root);
    std::string written;
    root->WritePretty(written, 0);
    // Brackets, the 1 and their line feeds, and two blanks for each level of a line.
    EXPECT_EQ(written.size(), 4 * kPrettyDepth + 1 + 2 * kPrettyDepth * kPrettyDepth);
  });
}

}  // namespace
}  // namespace Vask
