#include <fstream>
#include <sstream>

#include "tests/messages/AllMessages.h"
#include "tests/messages/MessageTest.h"
#include "tests/support/BuildFolder.h"

// Compares docs/wire-protocol.md with the code.
namespace Messages::Tests {
namespace {

// A fenced block: the text behind its opening fence, and its lines.
struct Block {
  std::string info;
  std::string content;
};

class WireProtocolPageTest : public MessageTest {
 protected:
  WireProtocolPageTest() {
    const std::string page = Vask::Tests::InBuildFolder("docs/wire-protocol.md");
    std::ifstream file(page, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << page;
    for (std::string line; std::getline(file, line);) m_lines.push_back(line);
  }

  // Returns the blocks whose info begins with `start`.
  std::vector<Block> Blocks(const std::string& start) const {
    std::vector<Block> blocks;
    bool within = false;
    for (const std::string& line : m_lines) {
      if (line.starts_with("```")) {
        within = !within && line.starts_with("```" + start);
        if (within) blocks.push_back({line.substr(3), ""});
      } else if (within) {
        blocks.back().content += line + "\n";
      }
    }
    return blocks;
  }

  // Returns the rows of the table with this heading.
  Texts Table(const std::string& heading) const {
    Texts rows;
    auto line = std::find(m_lines.begin(), m_lines.end(), heading);
    for (; line != m_lines.end() && line->starts_with("|"); ++line) rows.push_back(*line);
    return rows;
  }

  // Processes a text while every message has a subscriber. Returns the result and
  // the calls.
  std::string ReceiveSubscribed(const std::string& text) {
    Handled();
    for (const Message& message : AllMessages()) message.subscribe();
    const bool taken = registrar.OnJsonMessageText(text.c_str());
    for (const Message& message : AllMessages()) message.unsubscribe();
    return (taken ? "true " : "false ") + Handled();
  }

 private:
  Texts m_lines;
};

TEST_F(WireProtocolPageTest, CatalogueTableIsTheCatalogue) {
  Texts expected = {"| no | name | answers | body |", "|---|---|---|---|"};
  for (std::size_t i = 0; i < kCatalogueSize; ++i) {
    const CatalogueEntry& entry = kCatalogue[i];
    const std::string answers = entry.role == MessageRole::ANSWER
                                    ? " `" + std::string(kCatalogue[i - 1].name) + "` |"
                                    : "  |";
    expected.push_back("| " + std::to_string(i + 1) + " | `" + std::string(entry.name) + "` |" +
                       answers + (entry.body == MessageBody::RECORD ? " read |" : " not read |"));
  }
  std::string rows;
  for (const std::string& row : expected) rows += row + "\n";
  EXPECT_EQ(expected, Table(expected[0])) << "the table must be:\n" << rows;
}

TEST_F(WireProtocolPageTest, ExampleFramesHaveTheirLengthsAndAreProcessed) {
  const std::vector<Block> frames = Blocks("frame");
  EXPECT_EQ(9u, frames.size());
  for (const Block& frame : frames) {
    std::istringstream stream(frame.content);
    std::size_t length = 0;
    char mark = '\0';
    std::string body;
    stream >> length >> mark;
    std::getline(stream, body);
    EXPECT_EQ('#', mark) << frame.content;
    EXPECT_EQ(length, body.size()) << frame.content;

    const auto envelope = ParseObject(body);
    const Vask::Json* name = envelope->Find("name");
    ASSERT_NE(nullptr, name) << frame.content;
    const std::string quoted = Compact(*name);
    const std::size_t index = FindInCatalogue(quoted.substr(1, quoted.size() - 2));
    ASSERT_LT(index, kCatalogueSize) << frame.content;
    const int id = body.ends_with("\"id\":7}") ? 7 : 0;
    EXPECT_EQ("true " + HandledAs(index, id), ReceiveSubscribed(body)) << frame.content;
  }
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(WireProtocolPageTest, ExampleBodiesAreProcessed) {
  const std::vector<Block> bodies = Blocks("body ");
  EXPECT_EQ(9u, bodies.size());
  for (const Block& body : bodies) {
    const std::string name = body.info.substr(5);
    const std::size_t index = FindInCatalogue(name);
    ASSERT_LT(index, kCatalogueSize) << name;
    EXPECT_EQ("true " + HandledAs(index, 0),
              ReceiveSubscribed(R"({"name":")" + name + R"(","data":)" + body.content + "}"))
        << name;
  }
  EXPECT_EQ(Texts{}, Reports());
}

TEST_F(WireProtocolPageTest, EveryRecordHasAnExample) {
  for (const CatalogueEntry& entry : kCatalogue) {
    if (entry.body != MessageBody::RECORD) continue;
    const std::string name(entry.name);
    bool found = false;
    for (const Block& body : Blocks("body ")) found |= body.info == "body " + name;
    for (const Block& frame : Blocks("frame"))
      found |= frame.content.find("\"name\":\"" + name + "\"") != std::string::npos;
    EXPECT_TRUE(found) << "the page shows no frame and no body of " << name;
  }
}

}  // namespace
}  // namespace Messages::Tests
