// JSON text: parse, write, parse, write. What was written must parse, and be
// written the same again, in both forms; nothing may be left over.

#include <algorithm>
#include <string>

#include "fuzz/EmptyKey.h"
#include "fuzz/FuzzInput.h"
#include "json/Json.h"
#include "json/JsonObject.h"
#include "json/JsonParser.h"

namespace {

using Vask::Json;

// Listing a key of more than this many characters ends the process, as it
// should; such objects are parsed and released here, and not written.
bool HoldsLongText(const std::string& text) {
  std::size_t run = 0;
  char before = '\0';
  for (const char c : text) {
    run = c == '"' && before != '\\' ? 0 : run + 1;
    if (run > Vask::JsonObject::Dictionary::kMaxVisitedKeyLength) return true;
    before = c;
  }
  return false;
}

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

// Neither bytes that the writer drops, nor sequences that read as another
// character, nor escapes of either.
bool IsPlain(const std::string& text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return c >= ' ' && c <= '~' && c != '\\'; });
}

// Plain text is written the same from the first time on. Of the rest the first
// writing settles what malformed sequences mean, the second drops the control
// characters that this may give, and the third puts keys that have changed by it
// into their order; those of which nothing is left are gone then.
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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = Vask::Fuzz::Input(data, size).Text();
  const auto before = Json::Constructed() - Json::Destroyed();

  Vask::ParseResult result;
  Json* root = Vask::Parse(result, text.c_str());
  FUZZ_EXPECT(root == nullptr || result.errorMessage.empty());
  FUZZ_EXPECT(result.line >= 1 && result.column >= 1);
  FUZZ_EXPECT(result.line + result.column <= text.size() + 2);
  if (root != nullptr) root->Release();
  FUZZ_EXPECT(Json::Constructed() - Json::Destroyed() == before ||
              Vask::Fuzz::MayHoldEmptyKey(text));

  if (root != nullptr && !HoldsLongText(text)) ExpectStable(text);
  return 0;
}
