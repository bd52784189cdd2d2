#include "json/JsonParser.h"

#include <array>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

#include "json/JsonArray.h"
#include "json/JsonBool.h"
#include "json/JsonNull.h"
#include "json/JsonNumber.h"
#include "json/JsonObject.h"
#include "json/JsonRef.h"
#include "json/JsonString.h"

namespace Vask {

namespace {

constexpr const char* kExpectedDigit = "Expected a digit";
constexpr const char* kUnexpectedToken = "Unexpected token";
constexpr const char* kBadUnicode = "Unable to parse unicode symbol";
constexpr const char* kMissingQuote = "Missing closing quote";
constexpr const char* kExpectedKey = "Expected object property string";
constexpr const char* kExpectedColon = "Expected property/value separator colon";
constexpr const char* kExpectedComma = "Expected property separator comma";
constexpr const char* kMissingBracket = "Missing object close bracket";
constexpr const char* kNoMessage = "";

// The characters at which a run of plain ones in a string ends.
constexpr std::string_view kStringSpecials("\0\"\\\n", 4);

// Keys are folded while they are read; this stops where a string has to be
// looked at more closely.
constinit const KeyFolding kKeyFolding(KeyFolding::Letters::ToLower, kStringSpecials);
constinit const KeyFolding kPlainCharacters(KeyFolding::Letters::Kept, kStringSpecials);

const char* SkipPlain(const char* at) {
  while (kPlainCharacters.Fold(*at) != 0) ++at;
  return at;
}

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// The digit's value, or -1.
int HexDigit(char c) {
  if (IsDigit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// A container that is not complete yet, with the reference to it.
struct OpenContainer {
  JsonObject* object;  // one of the two is null
  JsonArray* array;
  JsonObject::Dictionary::Node* key;  // under which the object's next value goes

  Json* Value() const { return object != nullptr ? static_cast<Json*>(object) : array; }
};

// The containers around the place where the parser is, outermost first. The
// first few, all there are in any message of this system, need no heap.
class OpenContainers {
 public:
  bool Empty() const { return m_count == 0; }

  // There must be one.
  OpenContainer& Innermost() { return *m_innermost; }

  void Push(const OpenContainer& container) {
    if (m_count < m_first.size()) {
      m_first[m_count] = container;
    } else {
      m_deeper.push_back(container);
    }
    ++m_count;
    FindInnermost();
  }

  // Gives up the innermost one; its reference passes to the caller.
  Json* Pop() {
    Json* value = m_innermost->Value();
    if (m_count > m_first.size()) m_deeper.pop_back();
    --m_count;
    FindInnermost();
    return value;
  }

 private:
  void FindInnermost() {
    if (m_count > m_first.size()) {
      m_innermost = &m_deeper.back();
    } else if (m_count != 0) {
      m_innermost = &m_first[m_count - 1];
    }
  }

  std::size_t m_count = 0;
  OpenContainer* m_innermost = nullptr;
  std::array<OpenContainer, 16> m_first;
  std::vector<OpenContainer> m_deeper;
};

// Where the characters of a string go: either into a buffer of sufficient size
// or into a dictionary.
class BufferSink {
 public:
  explicit BufferSink(char* begin) : m_end(begin) {}
  void Append(char c) { *m_end++ = c; }
  // Takes what is plain from `at` on; answers where that ends.
  const char* AppendPlain(const char* at) {
    while (kPlainCharacters.Fold(*at) != 0) *m_end++ = *at++;
    return at;
  }
  const char* End() const { return m_end; }

 private:
  char* m_end;
};

class KeySink {
 public:
  explicit KeySink(JsonObject& object) : m_path(object.Members()) {}
  void Append(char c) { m_path.Append(c); }
  const char* AppendPlain(const char* at) { return m_path.Append(at, kKeyFolding); }
  JsonObject::Dictionary::Node* Node() const { return m_path.End(); }

 private:
  JsonObject::Dictionary::Path m_path;
};

// One pointer runs over the text once. At each place where a value may stand,
// BeginValue reads a scalar, a string or an empty container whole, or opens a
// container and stops before its first value. EndValue then gives the complete
// value to the innermost open container and reads on to the next value or to
// the container's end, which makes that container the complete value. No call
// goes deeper for a nested value.
//
// The line's beginning is kept instead of a column: the column is the distance
// to it. A character that does not count moves it along.
class JsonParser {
 public:
  explicit JsonParser(const char* text) : m_at(text), m_lineBegin(text) {}
  ~JsonParser();
  JsonParser(const JsonParser&) = delete;
  JsonParser& operator=(const JsonParser&) = delete;

  Json* Run();
  void Report(ParseResult& result) const;

 private:
  enum class Step { Complete, NextValue, Failed };

  Step BeginValue();
  Step BeginString();
  Step BeginObject();
  Step BeginArray();
  Step ReadKey();
  Step ReadScalar();
  Step ReadNumber();
  Step ReadLiteral(std::string_view literal);
  Step EndValue();
  Step EndMember();
  Step EndElement();
  Step CloseContainer();
  Step Complete(Json* value);
  Step Fail(const char* message);

  template <class Sink>
  bool ReadString(Sink& sink);
  template <class Sink>
  bool ReadEscape(Sink& sink);
  template <class Sink>
  bool ReadCodeUnit(Sink& sink);

  Json::Place Here() { return {&m_memory, 0}; }
  std::size_t StringRoom() const;
  void SkipSpace();
  void SkipDigits();
  void NewLine();

  ValueMemory m_memory;
  const char* m_at;
  const char* m_lineBegin;
  std::uint32_t m_line = 1;
  const char* m_message = kNoMessage;
  Json* m_value = nullptr;  // complete, and not yet given to anybody
  OpenContainers m_open;
};

JsonParser::~JsonParser() {
  if (m_value != nullptr) m_value->Release();
  while (!m_open.Empty()) m_open.Pop()->Release();
}

Json* JsonParser::Run() {
  Step step = Step::NextValue;
  while (step != Step::Failed) {
    if (step == Step::NextValue) {
      SkipSpace();
      step = BeginValue();
    } else if (m_open.Empty()) {
      return std::exchange(m_value, nullptr);
    } else {
      step = EndValue();
    }
  }
  return nullptr;
}

void JsonParser::Report(ParseResult& result) const {
  result.errorMessage = m_message;
  result.line = m_line;
  result.column = static_cast<std::uint32_t>(m_at - m_lineBegin) + 1;
}

JsonParser::Step JsonParser::Complete(Json* value) {
  m_value = value;
  return Step::Complete;
}

JsonParser::Step JsonParser::Fail(const char* message) {
  m_message = message;
  return Step::Failed;
}

JsonParser::Step JsonParser::BeginValue() {
  switch (*m_at) {
    case '"':
      return BeginString();
    case '{':
      return BeginObject();
    case '[':
      return BeginArray();
    default:
      return ReadScalar();
  }
}

JsonParser::Step JsonParser::BeginObject() {
  ++m_at;
  SkipSpace();
  if (*m_at == '}') {
    ++m_at;
    return Complete(new (Here()) JsonObject);
  }
  JsonRef<JsonObject> object(JsonObject::CreateWithRoom(&m_memory));
  m_open.Push({object.Get(), nullptr, nullptr});
  static_cast<void>(object.Detach());
  return ReadKey();
}

JsonParser::Step JsonParser::BeginArray() {
  ++m_at;
  auto* array = new (Here()) JsonArray;
  m_value = array;
  SkipSpace();
  if (*m_at == ']') {
    ++m_at;
    return Step::Complete;
  }
  m_open.Push({nullptr, array, nullptr});
  m_value = nullptr;
  return Step::NextValue;
}

JsonParser::Step JsonParser::ReadKey() {
  if (*m_at != '"') return Fail(kExpectedKey);
  OpenContainer& open = m_open.Innermost();
  KeySink key(*open.object);
  if (!ReadString(key)) return Step::Failed;
  open.key = key.Node();
  SkipSpace();
  if (*m_at != ':') return Fail(kExpectedColon);
  ++m_at;
  return Step::NextValue;
}

JsonParser::Step JsonParser::EndValue() {
  return m_open.Innermost().object != nullptr ? EndMember() : EndElement();
}

JsonParser::Step JsonParser::EndMember() {
  JsonObject::Adopt(m_open.Innermost().key, std::exchange(m_value, nullptr));
  SkipSpace();
  if (*m_at == '}') return CloseContainer();
  if (*m_at != ',') return Fail(kExpectedComma);
  ++m_at;
  SkipSpace();
  return *m_at == '\0' ? Fail(kMissingBracket) : ReadKey();
}

JsonParser::Step JsonParser::EndElement() {
  m_open.Innermost().array->AppendAdopted(m_value);
  m_value = nullptr;
  SkipSpace();
  if (*m_at == ']') return CloseContainer();
  if (*m_at != ',') return Fail(kNoMessage);
  ++m_at;
  return Step::NextValue;
}

JsonParser::Step JsonParser::CloseContainer() {
  ++m_at;
  return Complete(m_open.Pop());
}

JsonParser::Step JsonParser::ReadScalar() {
  switch (*m_at) {
    case 'f':
      return ReadLiteral("false");
    case 't':
      return ReadLiteral("true");
    case 'n':
      return ReadLiteral("null");
    default:
      return *m_at == '-' || IsDigit(*m_at) ? ReadNumber() : Fail(kUnexpectedToken);
  }
}

JsonParser::Step JsonParser::ReadLiteral(std::string_view literal) {
  // Stops at the text's end, which no literal holds.
  if (std::strncmp(m_at, literal.data(), literal.size()) != 0) return Fail(kUnexpectedToken);
  m_at += literal.size();
  if (literal == "null") return Complete(new (Here()) JsonNull);
  return Complete(new (Here()) JsonBool(literal == "true"));
}

JsonParser::Step JsonParser::ReadNumber() {
  const char* begin = m_at;
  bool isInteger = true;
  if (*m_at == '-') ++m_at;
  if (!IsDigit(*m_at)) return Fail(kExpectedDigit);
  SkipDigits();
  if (*m_at == '.') {
    isInteger = false;
    ++m_at;
    SkipDigits();
  }
  if (*m_at == 'e' || *m_at == 'E') {
    ++m_at;
    if (*m_at == '+' || *m_at == '-') ++m_at;
    SkipDigits();
  }
  const std::string_view text(begin, static_cast<std::size_t>(m_at - begin));
  return Complete(JsonNumber::FromText(text, isInteger, &m_memory));
}

JsonParser::Step JsonParser::BeginString() {
  const char* begin = m_at + 1;
  const char* end = SkipPlain(begin);
  if (*end == '"') {  // nearly every string: its text stands there as it is
    m_at = end + 1;
    return Complete(JsonString::Create({begin, end}, &m_memory));
  }
  bool complete = false;
  const auto fill = [&](char* buffer) {
    BufferSink sink(buffer);
    complete = ReadString(sink);
    return static_cast<std::size_t>(sink.End() - buffer);
  };
  m_value = JsonString::CreateFilled(StringRoom(), fill, &m_memory);
  return complete ? Step::Complete : Step::Failed;
}

// Bytes that suffice for the string at m_at: as many as stand before its closing
// quote, for no escape grows.
std::size_t JsonParser::StringRoom() const {
  const char* begin = m_at + 1;
  const char* at = SkipPlain(begin);
  while (*at != '"' && *at != '\0') {
    if (*at == '\\' && at[1] != '\0') ++at;
    ++at;
  }
  return static_cast<std::size_t>(at - begin);
}

template <class Sink>
bool JsonParser::ReadString(Sink& sink) {
  ++m_at;
  for (;;) {
    m_at = sink.AppendPlain(m_at);
    switch (*m_at) {
      case '"':
        ++m_at;
        return true;
      case '\\':
        if (!ReadEscape(sink)) return false;
        break;
      case '\n':
        sink.Append('\n');
        NewLine();
        break;
      default:
        m_message = kMissingQuote;
        return false;
    }
  }
}

template <class Sink>
bool JsonParser::ReadEscape(Sink& sink) {
  ++m_at;
  char meant = *m_at;
  switch (*m_at) {
    case '"':
    case '/':
    case '\\':
      break;
    case 'b':
      meant = '\b';
      break;
    case 'f':
      meant = '\f';
      break;
    case 'n':
      meant = '\n';
      break;
    case 'r':
      meant = '\r';
      break;
    case 't':
      meant = '\t';
      break;
    case 'u':
      ++m_at;
      return ReadCodeUnit(sink);
    default:
      return true;  // the backslash is dropped, the character read as usual
  }
  sink.Append(meant);
  ++m_at;
  ++m_lineBegin;  // the character behind the backslash does not count
  return true;
}

template <class Sink>
bool JsonParser::ReadCodeUnit(Sink& sink) {
  unsigned unit = 0;
  for (int i = 0; i < 4; ++i, ++m_at) {
    const int digit = HexDigit(*m_at);
    if (digit < 0) {
      m_message = kBadUnicode;
      return false;
    }
    unit = unit << 4 | static_cast<unsigned>(digit);
  }
  if (unit >= 0x800) {
    sink.Append(static_cast<char>(0xE0 | unit >> 12));
    sink.Append(static_cast<char>(0x80 | (unit >> 6 & 0x3F)));
    sink.Append(static_cast<char>(0x80 | (unit & 0x3F)));
  } else if (unit >= 0x80) {
    sink.Append(static_cast<char>(0xC0 | unit >> 6));
    sink.Append(static_cast<char>(0x80 | (unit & 0x3F)));
  } else if (unit != 0) {
    sink.Append(static_cast<char>(unit));
  }
  return true;
}

inline void JsonParser::SkipSpace() {
  if (static_cast<unsigned char>(*m_at) > ' ') return;
  for (;; ++m_at) {
    if (*m_at == '\n') {
      ++m_line;
      m_lineBegin = m_at + 1;
    } else if (*m_at != ' ' && (*m_at < '\t' || *m_at > '\r')) {
      return;
    }
  }
}

void JsonParser::SkipDigits() {
  const char* at = m_at;
  while (IsDigit(*at)) ++at;
  m_at = at;
}

void JsonParser::NewLine() {
  ++m_at;
  ++m_line;
  m_lineBegin = m_at;
}

}  // namespace

Json* Parse(ParseResult& result, const char* text) {
  result.errorMessage.clear();
  JsonParser parser(text);
  Json* root = parser.Run();
  parser.Report(result);
  return root;
}

}  // namespace Vask
