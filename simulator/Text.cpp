#include "simulator/Text.h"

#include <charconv>

#include "json/Json.h"
#include "json/JsonArray.h"
#include "json/JsonParser.h"
#include "json/JsonRef.h"

namespace Simulator {

namespace {

char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

template <class Number>
bool ParseAll(std::string_view text, Number& number) {
  const char* const end = text.data() + text.size();
  const auto [stop, fault] = std::from_chars(text.data(), end, number);
  return fault == std::errc() && stop == end;
}

std::string TwoHexDigits(char c) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  const auto byte = static_cast<unsigned char>(c);
  return {kDigits[byte >> 4], kDigits[byte & 0xF]};
}

Vask::JsonRef<Vask::Json> Parsed(const std::string& text) {
  Vask::ParseResult result;
  return Vask::JsonRef<Vask::Json>(Vask::Parse(result, text.c_str()));
}

// Reads the letter after a backslash and, for 'x', two digits, which it removes
// from `rest`. False for anything else.
bool UnescapeOne(char letter, std::string_view& rest, char& byte) {
  constexpr std::string_view kLetters = "nrt0\\";
  constexpr std::string_view kBytes("\n\r\t\0\\", 5);
  if (const std::size_t at = kLetters.find(letter); at != std::string_view::npos) {
    byte = kBytes[at];
    return true;
  }
  unsigned char value = 0;
  if (letter != 'x' || rest.size() < 2) return false;
  const auto [stop, fault] = std::from_chars(rest.data(), rest.data() + 2, value, 16);
  if (fault != std::errc() || stop != rest.data() + 2) return false;
  byte = static_cast<char>(value);
  rest.remove_prefix(2);
  return true;
}

}  // namespace

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (Lower(a[i]) != Lower(b[i])) return false;
  }
  return true;
}

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r';
}

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

std::string_view TakeWord(std::string_view& rest) {
  rest = Trimmed(rest);
  std::size_t length = 0;
  while (length < rest.size() && !IsBlank(rest[length])) ++length;
  const std::string_view word = rest.substr(0, length);
  rest = Trimmed(rest.substr(length));
  return word;
}

bool ParseWhole(std::string_view text, std::int32_t& number) {
  return ParseAll(text, number);
}
bool ParseCount(std::string_view text, std::uint32_t& number) {
  return ParseAll(text, number);
}

std::string Quoted(std::string_view text) {
  std::string out = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (static_cast<unsigned char>(c) < 0x20) {
      out += "\\u00" + TwoHexDigits(c);
    } else {
      out += c;
    }
  }
  return out + '"';
}

// The parser ignores everything after the first value, but nothing within an
// array. So [text] must hold one element. [text,@] must fail; it does not fail if
// the text itself closes the array.
bool IsOneJsonValue(const std::string& text) {
  const auto array = Parsed('[' + text + ']');
  if (!array || static_cast<const Vask::JsonArray&>(*array).Count() != 1) return false;
  return !Parsed('[' + text + ",@]");
}

bool Unescape(std::string_view text, std::string& bytes, std::string& error) {
  bytes.clear();
  while (!text.empty()) {
    char byte = text.front();
    text.remove_prefix(1);
    if (byte == '\\') {
      const char letter = text.empty() ? '\0' : text.front();
      if (!text.empty()) text.remove_prefix(1);
      if (!UnescapeOne(letter, text, byte)) {
        error = "after a backslash there must be n, r, t, 0, \\ or x and two hexadecimal digits";
        return false;
      }
    }
    bytes += byte;
  }
  return true;
}

std::string Escaped(std::string_view bytes) {
  std::string out;
  for (const char c : bytes) {
    if (c == '\\') {
      out += "\\\\";
    } else if (c >= 0x20 && c < 0x7F) {
      out += c;
    } else {
      out += "\\x" + TwoHexDigits(c);
    }
  }
  return out;
}

}  // namespace Simulator
