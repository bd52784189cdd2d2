// Compares the dictionary with std::map: insertions, look-ups of keys and of their
// prefixes, and order.

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/FuzzInput.h"
#include "json/StrDict3.h"

namespace {

using Dictionary = Vask::StrDict3<int>;

// Its keys are folded as the dictionary folds them, and with the other sign: a std::string
// orders unsigned bytes, and the dictionary signed ones.
using Model = std::map<std::string, int>;
using Pairs = std::vector<std::pair<std::string, int>>;

std::string WithOtherSign(std::string text) {
  for (char& c : text) c = static_cast<char>(c ^ 0x80);
  return text;
}

std::string ModelKey(std::string key, bool caseSensitive, bool toUpper) {
  for (char& c : key) {
    if (caseSensitive) continue;
    if (toUpper && c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    if (!toUpper && c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return WithOtherSign(std::move(key));
}

bool Collect(const char* key, const int* value, void* context) {
  static_cast<Pairs*>(context)->emplace_back(key, *value);
  return true;
}

// All functions that look a key up must return the same.
void ExpectFound(const Dictionary& dictionary, const Model& model, const std::string& key,
                 const std::string& modelKey) {
  // A path must lead to every key and to every prefix of a key.
  const auto longer = model.lower_bound(modelKey);
  const bool isPath = !key.empty() && longer != model.end() && longer->first.starts_with(modelKey);
  const bool isKey = isPath && longer->first.size() == modelKey.size();

  const int* found = dictionary.FindValue(key.c_str());
  FUZZ_EXPECT((found != nullptr) == isKey);
  FUZZ_EXPECT(found == nullptr || *found == longer->second);
  FUZZ_EXPECT(dictionary.FindValue(Vask::FoldedKey(key.c_str())) == found);

  const Dictionary::Node* node = nullptr;
  FUZZ_EXPECT(dictionary.Find(key.c_str(), node) == isPath);
  if (isPath) FUZZ_EXPECT((node->hasValue != 0) == (found != nullptr));
}

void ExpectSame(const Dictionary& dictionary, const Model& model) {
  Pairs pairs;
  FUZZ_EXPECT(dictionary.ForEach("", &Collect, &pairs));
  FUZZ_EXPECT(pairs.size() == model.size());
  auto expected = model.begin();
  for (const auto& [key, value] : pairs) {
    FUZZ_EXPECT(WithOtherSign(key) == expected->first && value == expected->second);
    ++expected;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Vask::Fuzz::Input input(data, size);
  const std::uint8_t mode = input.Byte();
  const bool caseSensitive = (mode & 1) != 0;
  const bool toUpper = (mode & 2) != 0;
  Dictionary dictionary(caseSensitive, toUpper);
  Model model;
  for (int step = 0; !input.AtEnd(); ++step) {
    const bool insert = input.Byte() % 4 != 0;
    std::string key = input.Text();
    key.resize(std::min(key.size(), Dictionary::kMaxVisitedKeyLength));
    const std::string modelKey = ModelKey(key, caseSensitive, toUpper);
    if (insert) {
      FUZZ_EXPECT(dictionary.Insert(key.c_str(), step) == !key.empty());
      if (!key.empty()) model[modelKey] = step;
    }
    std::string prefix, modelPrefix;
    ExpectFound(dictionary, model, prefix, modelPrefix);
    for (std::size_t at = 0; at < key.size(); ++at) {
      prefix += key[at];
      modelPrefix += modelKey[at];
      ExpectFound(dictionary, model, prefix, modelPrefix);
    }
  }
  ExpectSame(dictionary, model);
  for (const auto& [key, value] : model) {  // a second walk, which empties it
    int taken = 0;
    FUZZ_EXPECT(dictionary.TakeFirst(taken) && taken == value);
  }
  return 0;
}
