#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "json/Json.h"

namespace Vask {

class JsonArray;
class JsonObject;

// Makes the two text forms of any tree, for Write and WritePretty of the values. The time
// is linear in the length of the result. A list holds the open containers, so the use of
// the stack does not grow with the depth of a tree.
//
// The compact form has no white space. The indented form has a line for every member. In
// it, an empty container is two brackets with two line feeds between them.
class JsonWriter {
 public:
  // Replaces `out` by the text of `root`.
  static void Compact(const Json& root, std::string& out);
  static void Pretty(const Json& root, std::uint32_t indentLevel, std::string& out);

 private:
  struct Member {
    const Json* value;
    std::size_t key;  // place in m_keys; objects only
  };
  // A container that is being written: its remaining members are those from
  // `next` to the end of m_members.
  struct Open {
    bool isObject;
    std::size_t first;
    std::size_t next;
    std::size_t keys;  // where its keys begin in m_keys
  };

  JsonWriter(std::string& out, bool pretty, std::uint32_t indentLevel)
      : m_out(out), m_pretty(pretty), m_indentLevel(indentLevel) {}

  void Run(const Json& root);
  void Begin(const Json& value);
  void BeginObject(const JsonObject& object);
  void BeginArray(const JsonArray& array);
  void NextMember(Open& open);
  void WriteKey(const char* key);
  void End();
  void Indent();

  std::string& m_out;
  const bool m_pretty;
  std::size_t m_indentLevel;  // of the innermost open container
  std::vector<Open> m_open;
  std::vector<Member> m_members;  // of all open containers, outermost first
  std::string m_keys;             // their names, each ended by a NUL
};

// Appends `text`, up to its first NUL, in the form that it has between the quotes of a
// JSON string:
//  - quote, backslash, slash, backspace, tab, line feed, form feed and carriage
//    return as their two-character escapes,
//  - the other characters from 0x20 to 0x7F unchanged,
//  - UTF-8 sequences of two and three bytes as \u and four lower-case
//    hexadecimal digits; of the bytes after the first only the low six bits are
//    looked at; a sequence that the text's end cuts loses its first byte,
//  - everything else not at all: other control characters, the first bytes of
//    longer sequences, stray continuation bytes.
void AppendEscaped(std::string& out, std::string_view text);

}  // namespace Vask
