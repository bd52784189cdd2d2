#include "json/JsonParser.h"

#include <cstring>
#include <string_view>

#include "json/JsonArray.h"
#include "json/JsonObject.h"
#include "json/JsonRef.h"
#include "json/JsonScalars.h"
#include "json/StringScan.h"

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

const char* SkipDigits(const char* at) {
  while (IsDigit(*at)) ++at;
  return at;
}

// The digit's value, or -1.
int HexDigit(char c) {
  if (IsDigit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// A sink receives the characters of a string: a buffer of sufficient size, or a
// dictionary.
class BufferSink {
 public:
  explicit BufferSink(char* begin) : m_end(begin) {}
  void Append(char c) { *m_end++ = c; }
  // Takes the plain characters from `at` on, and returns the place behind them.
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
  explicit KeySink(JsonObject::Dictionary& members) : m_path(members) {}
  void Append(char c) { m_path.Append(c); }
  const char* AppendPlain(const char* at) { return m_path.Append(at, kKeyFolding); }
  JsonObject::Dictionary::Node* Node() const { return m_path.End(); }

 private:
  JsonObject::Dictionary::Path m_path;
};

// One pointer moves over the text once. BeginValue reads a whole scalar, string or empty
// container, or opens a container. An open container is stored at once in the container
// around it and becomes the innermost one, and the parser continues inside it. AfterValue
// reads from the end of a value to the next value, and passes the ends of all containers
// that end there. A nested value needs no deeper call.
//
// Each step takes the place where it begins and returns the place where it ended. It
// returns null if there is nothing more to read: after a fault, or when the root is
// complete. So the pointer stays in a register all the time.
//
// The parser keeps the beginning of the line instead of a column: the column is the
// distance to it. A character that does not count moves the beginning by one.
class JsonParser {
 public:
  JsonParser(const char* text, ValueMemory& memory)
      : m_memory(memory), m_textEnd(text + std::strlen(text)), m_end(text), m_lineBegin(text) {}
  ~JsonParser();
  JsonParser(const JsonParser&) = delete;
  JsonParser& operator=(const JsonParser&) = delete;

  Json* Run();
  void Report(ParseResult& result) const;

 private:
  // The place where reading continues, and the value if all of it was read. The value is
  // null after a container was opened, or after a fault.
  struct Begun {
    const char* at;
    Json* value;
  };

  Begun BeginValue(const char* at);
  Begun BeginString(const char* at);
  Begun BeginMixedString(const char* at);
  Begun BeginObject(const char* at);
  Begun BeginArray(const char* at);
  Begun ReadScalar(const char* at);
  Begun ReadNumber(const char* at);
  Begun ReadFewDigits(const char* at);
  Begun ReadLiteral(const char* at, std::string_view literal);
  const char* AfterValue(const char* at);
  const char* ReadKey(const char* at);
  const char* ReadLongKey(const char* at);
  const char* ReadMixedKey(const char* at);
  const char* Fail(const char* at, const char* message);

  void Open(Json* container, JsonObject* object);
  void Close();
  void Give(Json* value);

  template <class Sink>
  const char* ReadString(const char* at, Sink& sink);
  template <class Sink>
  const char* ReadEscape(const char* at, Sink& sink);
  template <class Sink>
  const char* ReadCodeUnit(const char* at, Sink& sink);

  Json::Place Here() { return {&m_memory, 0}; }
  const char* SkipSpace(const char* at);
  const char* SkipLongSpace(const char* at);
  const char* NewLine(const char* at);

  ValueMemory& m_memory;
  const char* const m_textEnd;
  const char* m_end;  // where the parse stopped
  const char* m_lineBegin;
  std::uint32_t m_line = 1;
  const char* m_message = kNoMessage;
  JsonRef<Json> m_root;                           // the outermost container
  Json* m_innermost = nullptr;                    // of the open ones; each knows the one around it
  JsonObject* m_object = nullptr;                 // the innermost, unless it is an array
  JsonObject::Dictionary::Node* m_key = nullptr;  // the key of its next value
};

// A parse that failed leaves containers open. No other container holds those under an
// empty key.
JsonParser::~JsonParser() {
  while (m_innermost != nullptr) {
    Json* around = m_innermost->Around();
    if (!m_innermost->IsHeldByAround()) m_innermost->Release();
    m_innermost = around;
  }
}

Json* JsonParser::Run() {
  const char* at = m_end;
  while (at != nullptr) {
    const Begun begun = BeginValue(SkipSpace(at));
    at = begun.at;
    if (begun.value == nullptr) continue;
    if (m_innermost == nullptr) {
      m_end = at;
      return begun.value;
    }
    Give(begun.value);
    at = AfterValue(at);
  }
  return m_innermost == nullptr ? m_root.Detach() : nullptr;
}

void JsonParser::Report(ParseResult& result) const {
  if (*m_message != '\0') result.errorMessage = m_message;
  result.line = m_line;
  result.column = static_cast<std::uint32_t>(m_end - m_lineBegin) + 1;
}

const char* JsonParser::Fail(const char* at, const char* message) {
  m_end = at;
  m_message = message;
  return nullptr;
}

inline JsonParser::Begun JsonParser::BeginValue(const char* at) {
  switch (*at) {
    case '"':
      return BeginString(at);
    case '{':
      return BeginObject(at);
    case '[':
      return BeginArray(at);
    default:
      return ReadScalar(at);
  }
}

inline JsonParser::Begun JsonParser::BeginObject(const char* at) {
  at = SkipSpace(at + 1);
  if (*at == '}') return {at + 1, new (Here()) JsonObject};
  JsonObject* object = JsonObject::CreateForText(m_memory);
  Open(object, object);
  return {ReadKey(at), nullptr};
}

JsonParser::Begun JsonParser::BeginArray(const char* at) {
  at = SkipSpace(at + 1);
  auto* array = new (Here()) JsonArray;
  if (*at == ']') return {at + 1, array};
  Open(array, nullptr);
  return {at, nullptr};
}

// Takes over the reference to a container that is not empty.
inline void JsonParser::Open(Json* container, JsonObject* object) {
  const bool isHeld = m_innermost == nullptr || (m_object != nullptr && m_key != nullptr);
  if (m_innermost == nullptr) {
    m_root.Reset(container);
  } else if (isHeld) {
    JsonObject::Adopt(m_key, container);
  }
  container->SetAround(m_innermost, isHeld);
  m_innermost = container;
  m_object = object;
}

// An array takes a container only when that is complete, so that one that is never closed
// costs no cell. If memory runs out here, the container is still open.
inline void JsonParser::Close() {
  Json* closed = m_innermost;
  Json* around = closed->Around();
  const bool isInArray = around != nullptr && around->Type() == JsonType::Array;
  if (m_object != nullptr) m_object->CloseText();
  if (isInArray) {
    static_cast<JsonArray*>(around)->AppendAdopted(closed, &m_memory);
  } else if (!closed->IsHeldByAround()) {
    closed->Release();
  }
  m_innermost = around;
  m_object = isInArray ? nullptr : static_cast<JsonObject*>(around);
}

// Passes the reference to the innermost container. An object stores nothing under an
// empty key.
inline void JsonParser::Give(Json* value) {
  if (m_object == nullptr) {
    JsonRef<Json> element(value);
    static_cast<JsonArray*>(m_innermost)->AppendAdopted(value, &m_memory);
    static_cast<void>(element.Detach());
  } else if (m_key != nullptr) {
    JsonObject::Adopt(m_key, value);
  } else {
    value->Release();
  }
}

inline const char* JsonParser::AfterValue(const char* at) {
  do {
    if (*at != ',') at = SkipSpace(at);
    if (*at == ',') {
      if (m_object == nullptr) return at + 1;
      ++at;
      if (*at != '"') at = SkipSpace(at);
      return *at == '\0' ? Fail(at, kMissingBracket) : ReadKey(at);
    }
    if (*at != (m_object != nullptr ? '}' : ']')) {
      return Fail(at, m_object != nullptr ? kExpectedComma : kNoMessage);
    }
    ++at;
    Close();
  } while (m_innermost != nullptr);
  m_end = at;
  return nullptr;
}

// Always inline: a call would add a tenth to the cost of every key.
[[gnu::always_inline]] inline const char* JsonParser::ReadKey(const char* at) {
  if (*at != '"') return Fail(at, kExpectedKey);
  const KeyPiece piece = KeyReader(m_textEnd).Piece(at + 1);
  const char* end = at + 1 + piece.length;
  JsonObject::Dictionary::Path path(m_object->Members());
  if (*end == '"' && piece.length != KeyPiece::kMaxLength && path.AppendOnly(piece)) {
    m_key = path.End();  // nearly every key has one piece, in one node
    ++end;
  } else {
    end = ReadLongKey(at);
    if (end == nullptr) return nullptr;
  }
  if (*end != ':') end = SkipSpace(end);
  return *end == ':' ? end + 1 : Fail(end, kExpectedColon);
}

// Reads a key that needs several nodes or has other than plain characters. Starts again
// at the beginning of the key.
[[gnu::noinline]] const char* JsonParser::ReadLongKey(const char* at) {
  JsonObject::Dictionary::Path path(m_object->Members());
  const char* end = path.Append(at + 1, KeyReader(m_textEnd));
  m_key = path.End();
  return *end == '"' ? end + 1 : ReadMixedKey(at);
}

const char* JsonParser::ReadMixedKey(const char* at) {
  KeySink key(m_object->Members());
  at = ReadString(at, key);
  m_key = key.Node();
  return at;
}

JsonParser::Begun JsonParser::ReadScalar(const char* at) {
  switch (*at) {
    case 'f':
      return ReadLiteral(at, "false");
    case 't':
      return ReadLiteral(at, "true");
    case 'n':
      return ReadLiteral(at, "null");
    default:
      if (*at == '-' || IsDigit(*at)) return ReadNumber(at);
      return {Fail(at, kUnexpectedToken), nullptr};
  }
}

JsonParser::Begun JsonParser::ReadLiteral(const char* at, std::string_view literal) {
  // Stops at the end of the text, because no literal contains a NUL.
  if (std::strncmp(at, literal.data(), literal.size()) != 0) {
    return {Fail(at, kUnexpectedToken), nullptr};
  }
  at += literal.size();
  if (literal == "null") return {at, new (Here()) JsonNull};
  return {at, new (Here()) JsonBool(literal == "true")};
}

// Reads a number of up to seven digits and nothing else. No value if the number is another
// one, or so near the end of the text that its copy could read behind it.
inline JsonParser::Begun JsonParser::ReadFewDigits(const char* begin) {
  constexpr std::ptrdiff_t kRoom = JsonNumber::kDigitsRoom;
  if (m_textEnd - begin < kRoom) return {begin, nullptr};
  const char* at = begin;
  std::int32_t value = 0;
  for (; IsDigit(*at) && at - begin < kRoom - 1; ++at) value = value * 10 + (*at - '0');
  const bool isWhole = !IsDigit(*at) && *at != '.' && *at != 'e' && *at != 'E';
  if (at == begin || !isWhole) return {begin, nullptr};
  const auto size = static_cast<std::size_t>(at - begin);
  return {at, JsonNumber::FromDigits(begin, size, value, &m_memory)};
}

JsonParser::Begun JsonParser::ReadNumber(const char* begin) {
  const Begun few = ReadFewDigits(begin);
  if (few.value != nullptr) return few;  // nearly every number
  const char* at = begin;
  bool isInteger = true;
  if (*at == '-') ++at;
  if (!IsDigit(*at)) return {Fail(at, kExpectedDigit), nullptr};
  at = SkipDigits(at);
  if (*at == '.') {
    isInteger = false;
    at = SkipDigits(at + 1);
  }
  if (*at == 'e' || *at == 'E') {
    ++at;
    if (*at == '+' || *at == '-') ++at;
    at = SkipDigits(at);
  }
  return {at, JsonNumber::FromText({begin, at}, isInteger, &m_memory)};
}

inline JsonParser::Begun JsonParser::BeginString(const char* at) {
  const char* end = SkipPlain(at + 1, m_textEnd);
  if (*end != '"') return BeginMixedString(at);
  const std::string_view text(at + 1, end);  // nearly every string needs no change
  constexpr std::size_t kShort = 16;
  if (text.size() >= kShort || m_textEnd - text.begin() < std::ptrdiff_t{kShort}) {
    return {end + 1, JsonString::Create(text, &m_memory)};
  }
  // Copies a fixed number of bytes, including some behind the text: this is faster than a
  // call.
  const auto fill = [text](char* buffer) {
    std::memcpy(buffer, text.data(), kShort);
    return text.size();
  };
  return {end + 1, JsonString::CreateFilled(kShort, fill, &m_memory)};
}

JsonParser::Begun JsonParser::BeginMixedString(const char* at) {
  const char* end = nullptr;
  const auto fill = [&](char* buffer) {
    BufferSink sink(buffer);
    end = ReadString(at, sink);
    return static_cast<std::size_t>(sink.End() - buffer);
  };
  JsonRef<JsonString> string(JsonString::CreateFilled(StringRoom(at + 1), fill, &m_memory));
  return {end, end != nullptr ? string.Detach() : nullptr};
}

template <class Sink>
const char* JsonParser::ReadString(const char* at, Sink& sink) {
  ++at;
  while (at != nullptr) {
    at = sink.AppendPlain(at);
    switch (*at) {
      case '"':
        return at + 1;
      case '\\':
        at = ReadEscape(at + 1, sink);
        break;
      case '\n':
        sink.Append('\n');
        at = NewLine(at);
        break;
      default:
        return Fail(at, kMissingQuote);
    }
  }
  return nullptr;
}

template <class Sink>
const char* JsonParser::ReadEscape(const char* at, Sink& sink) {
  char meant = *at;
  switch (*at) {
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
      return ReadCodeUnit(at + 1, sink);
    default:
      return at;  // drops the backslash and reads the character as usual
  }
  sink.Append(meant);
  ++m_lineBegin;  // the character behind the backslash does not count
  return at + 1;
}

template <class Sink>
const char* JsonParser::ReadCodeUnit(const char* at, Sink& sink) {
  unsigned unit = 0;
  for (int i = 0; i < 4; ++i, ++at) {
    const int digit = HexDigit(*at);
    if (digit < 0) return Fail(at, kBadUnicode);
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
  return at;
}

inline const char* JsonParser::SkipSpace(const char* at) {
  return static_cast<unsigned char>(*at) > ' ' ? at : SkipLongSpace(at);
}

const char* JsonParser::SkipLongSpace(const char* at) {
  for (;; ++at) {
    if (*at == '\n') {
      ++m_line;
      m_lineBegin = at + 1;
    } else if (*at != ' ' && (*at < '\t' || *at > '\r')) {
      return at;
    }
  }
}

const char* JsonParser::NewLine(const char* at) {
  ++m_line;
  m_lineBegin = at + 1;
  return at + 1;
}

}  // namespace

Json* Parse(ParseResult& result, const char* text) {
  ValueMemory memory;
  return Parse(result, text, memory);
}

Json* Parse(ParseResult& result, const char* text, ValueMemory& memory) {
  result.errorMessage.clear();
  memory.Rewind();
  JsonParser parser(text, memory);
  Json* root = parser.Run();
  parser.Report(result);
  return root;
}

}  // namespace Vask
