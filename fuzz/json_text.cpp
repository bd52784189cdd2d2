// Compares the parser with a simple reader of this file: the verdict, the message, the
// line, the column and the written text must agree. The written text must parse, and its
// second writing must be the same, in both forms. No value may be left over.

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/FuzzInput.h"
#include "json/Json.h"
#include "json/JsonObject.h"
#include "json/JsonParser.h"

namespace {

using Vask::Json;

// The model recurses, so it does not read deeper texts.
constexpr std::size_t kDeepest = 200;

// The order of signed bytes, in which an object writes its members.
struct SignedOrder {
  bool operator()(const std::string& a, const std::string& b) const {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
      return static_cast<signed char>(x) < static_cast<signed char>(y);
    });
  }
};

// Returns bytes in the form that the compact form has between quotes.
std::string Escaped(const std::string& text) {
  std::string out;
  const auto byte = [&](std::size_t i) {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u;
  };
  for (std::size_t i = 0; i < text.size();) {
    const unsigned c = byte(i);
    const std::size_t length = c >= 0xC0 && c < 0xE0 ? 2 : c >= 0xE0 && c < 0xF0 ? 3 : 1;
    const std::string::size_type special = std::string("\b\t\n\f\r\"/\\").find(text[i]);
    if (length > 1 && i + length <= text.size()) {
      unsigned unit = c & (length == 2 ? 0x1F : 0x0F);
      for (std::size_t k = 1; k < length; ++k) unit = unit * 64 + (byte(i + k) & 0x3F);
      char digits[8];
      std::snprintf(digits, sizeof digits, "\\u%04x", unit);
      out += digits;
      i += length;
      continue;
    }
    if (special != std::string::npos) {
      out += '\\';
      out += "btnfr\"/\\"[special];
    } else if (c >= 0x20 && c < 0x80) {
      out += text[i];
    }
    ++i;
  }
  return out;
}

// Reads a text by the grammar, one character after the other.
class Model {
 public:
  explicit Model(const std::string& text) : m_text(text) {}

  // Returns the compact form of the value, or nothing after a failure.
  std::optional<std::string> Read() {
    SkipSpace();
    return ReadValue();
  }

  std::string message;
  unsigned line = 1;
  unsigned column = 1;
  bool isTooDeep = false;
  bool isKeyTooLong = false;  // writing such a key ends the process

 private:
  using Result = std::optional<std::string>;

  char Next() const { return m_at < m_text.size() ? m_text[m_at] : '\0'; }
  char Take() {
    const char c = m_text[m_at++];
    ++column;
    if (c == '\n') {
      ++line;
      column = 1;
    }
    return c;
  }
  void SkipSpace() {
    while (Next() != '\0' && std::string(" \t\n\v\f\r").find(Next()) != std::string::npos) Take();
  }
  bool NextIsDigit() const { return Next() >= '0' && Next() <= '9'; }

  Result Fail(const char* what) {
    message = what;
    return std::nullopt;
  }

  Result ReadValue() {
    switch (Next()) {
      case '"': {
        const std::optional<std::string> text = ReadString();
        return text ? Result("\"" + Escaped(*text) + "\"") : std::nullopt;
      }
      case '{':
      case '[': {
        if (m_depth == kDeepest) {
          isTooDeep = true;
          return std::nullopt;
        }
        ++m_depth;
        Result result = Next() == '{' ? ReadObject() : ReadArray();
        --m_depth;
        return result;
      }
      default:
        return ReadScalar();
    }
  }

  Result ReadScalar() {
    if (Next() == '-' || NextIsDigit()) return ReadNumber();
    for (const char* literal : {"false", "true", "null"}) {
      const std::string word = literal;
      if (m_text.compare(m_at, word.size(), word) != 0) continue;
      for (std::size_t i = 0; i < word.size(); ++i) Take();
      return word;
    }
    return Fail("Unexpected token");
  }

  Result ReadNumber() {
    std::string number;
    const auto digits = [&] {
      while (NextIsDigit()) number += Take();
    };
    if (Next() == '-') number += Take();
    if (!NextIsDigit()) return Fail("Expected a digit");
    digits();
    if (Next() == '.') {
      number += Take();
      digits();
    }
    if (Next() == 'e' || Next() == 'E') {
      number += Take();
      if (Next() == '+' || Next() == '-') number += Take();
      digits();
    }
    return number;
  }

  Result ReadString() {
    std::string text;
    Take();
    while (Next() != '"') {
      if (Next() == '\0') return Fail("Missing closing quote");
      if (Next() != '\\') {
        text += Take();
        continue;
      }
      Take();
      const std::string::size_type escape = std::string("\"/\\bfnrt").find(Next());
      if (Next() == 'u') {
        Take();
        if (!ReadUnit(text)) return Fail("Unable to parse unicode symbol");
      } else if (Next() != '\0' && escape != std::string::npos) {
        text += "\"/\\\b\f\n\r\t"[escape];
        ++m_at;  // not counted
      }
    }
    Take();
    return text;
  }

  bool ReadUnit(std::string& text) {
    unsigned unit = 0;
    for (int i = 0; i < 4; ++i) {
      const std::string::size_type digit = std::string("0123456789abcdefABCDEF").find(Next());
      if (Next() == '\0' || digit == std::string::npos) return false;
      unit = unit * 16 + static_cast<unsigned>(digit < 16 ? digit : digit - 6);
      Take();
    }
    const auto add = [&](unsigned byte) { text += static_cast<char>(byte); };
    if (unit == 0) return true;
    if (unit < 0x80) {
      add(unit);
    } else if (unit < 0x800) {
      add(0xC0 + unit / 64);
      add(0x80 + unit % 64);
    } else {
      add(0xE0 + unit / 4096);
      add(0x80 + unit / 64 % 64);
      add(0x80 + unit % 64);
    }
    return true;
  }

  Result ReadObject() {
    std::map<std::string, std::string, SignedOrder> members;
    Take();
    SkipSpace();
    if (Next() == '}') {
      Take();
      return "{}";
    }
    for (;;) {
      if (Next() != '"') return Fail("Expected object property string");
      std::optional<std::string> key = ReadString();
      if (!key) return std::nullopt;
      SkipSpace();
      if (Next() != ':') return Fail("Expected property/value separator colon");
      Take();
      SkipSpace();
      const Result value = ReadValue();
      if (!value) return std::nullopt;
      SkipSpace();
      for (char& c : *key) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
      isKeyTooLong = isKeyTooLong || key->size() > 128;
      if (!key->empty()) members[*key] = *value;
      if (Next() == '}') break;
      if (Next() != ',') return Fail("Expected property separator comma");
      Take();
      SkipSpace();
      if (Next() == '\0') return Fail("Missing object close bracket");
    }
    Take();
    std::string written;
    for (const auto& [key, value] : members) {
      written += (written.empty() ? "\"" : ",\"") + Escaped(key) + "\":" + value;
    }
    return "{" + written + "}";
  }

  Result ReadArray() {
    std::string written;
    Take();
    SkipSpace();
    if (Next() == ']') {
      Take();
      return "[]";
    }
    for (;;) {
      const Result value = ReadValue();
      if (!value) return std::nullopt;
      written += (written.empty() ? "" : ",") + *value;
      SkipSpace();
      if (Next() == ']') break;
      if (Next() != ',') return Fail("");
      Take();
      SkipSpace();
    }
    Take();
    return "[" + written + "]";
  }

  const std::string& m_text;
  std::size_t m_at = 0;
  std::size_t m_depth = 0;
};

enum class Form { Compact, Indented };

std::string ParseAndWrite(const std::string& text, Form form = Form::Compact) {
  Vask::ParseResult result;
  Json* root = Vask::Parse(result, text.c_str());
  FUZZ_EXPECT(root != nullptr);
  std::string written;
  if (form == Form::Compact) {
    root->Write(written);
  } else {
    root->WritePretty(written, 0);
  }
  root->Release();
  return written;
}

// True if the text has no bytes that the writer drops, no sequences that read as another
// character, and no escapes of these.
bool IsPlain(const std::string& text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return c >= ' ' && c <= '~' && c != '\\'; });
}

// Plain text does not change any more after the first writing. Other text needs more: the
// first writing decides the meaning of malformed sequences. The second drops the control
// characters that come from them. The third sorts the keys that have changed, and drops
// keys that have become empty.
void ExpectStable(const std::string& text) {
  const std::string first = ParseAndWrite(text);
  const std::string second = ParseAndWrite(first);
  const std::string third = ParseAndWrite(second);
  FUZZ_EXPECT(ParseAndWrite(third) == third);
  const std::string indented = ParseAndWrite(text, Form::Indented);
  if (!IsPlain(text)) return;
  FUZZ_EXPECT(first == second);
  FUZZ_EXPECT(ParseAndWrite(indented) == first);
}

void ExpectSame(const std::string& text, const Json* root, const Vask::ParseResult& result,
                Model& model) {
  const std::optional<std::string> expected = model.Read();
  if (model.isTooDeep) return;
  FUZZ_EXPECT((root != nullptr) == expected.has_value());
  FUZZ_EXPECT(result.errorMessage == model.message);
  FUZZ_EXPECT(result.line == model.line && result.column == model.column);
  if (root == nullptr || model.isKeyTooLong) return;
  std::string written;
  root->Write(written);
  FUZZ_EXPECT(written == *expected);
  ExpectStable(text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = Vask::Fuzz::Input(data, size).Text();
  const auto before = Json::Constructed() - Json::Destroyed();

  Vask::ParseResult result;
  Json* root = Vask::Parse(result, text.c_str());
  Model model(text);
  ExpectSame(text, root, result, model);
  if (root != nullptr) root->Release();
  FUZZ_EXPECT(Json::Constructed() - Json::Destroyed() == before);
  return 0;
}
