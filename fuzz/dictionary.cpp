// Compares the dictionary with std::map: insertions, look-ups of keys and of their
// prefixes, and order.

#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "fuzz/FuzzInput.h"
#include "json/StrDict3.h"

namespace {

using Dictionary = Vask::StrDict3<int>;

// The order of signed bytes, like the dictionary's.
struct SignedOrder {
  bool operator()(const std::string& a, const std::string& b) const {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
      return static_cast<signed char>(x) < static_cast<signed char>(y);
    });
  }
};
using Model = std::map<std::string, int, SignedOrder>;
using Pairs = std::vector<std::pair<std::string, int>>;

std::string Folded(std::string key, bool caseSensitive, bool toUpper) {
  for (char& c : key) {
    if (caseSensitive) continue;
    if (toUpper && c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    if (!toUpper && c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return key;
}

bool Collect(const char* key, const int* value, void* context) {
  static_cast<Pairs*>(context)->emplace_back(key, *value);
  return true;
}

// All functions that look a key up must return the same.
void ExpectFound(const Dictionary& dictionary, const Model& model, const std::string& key,
                 const std::string& folded) {
  const auto expected = model.find(folded);
  const int* found = dictionary.FindValue(key.c_str());
  FUZZ_EXPECT((found != nullptr) == (expected != model.end()));
  FUZZ_EXPECT(found == nullptr || *found == expected->second);
  FUZZ_EXPECT(dictionary.FindValue(Vask::FoldedKey(key.c_str())) == found);

  // A path must lead to every key and to every prefix of a key.
  const auto extends = [&](const std::string& text) { return text.starts_with(folded); };
  const auto longer = model.lower_bound(folded);
  const bool isPath = !key.empty() && longer != model.end() && extends(longer->first);
  const Dictionary::Node* node = nullptr;
  FUZZ_EXPECT(dictionary.Find(key.c_str(), node) == isPath);
  if (isPath) FUZZ_EXPECT((node->hasValue != 0) == (found != nullptr));
}

void ExpectSame(const Dictionary& dictionary, const Model& model) {
  Pairs pairs;
  FUZZ_EXPECT(dictionary.ForEach("", &Collect, &pairs));
  FUZZ_EXPECT(pairs == Pairs(model.begin(), model.end()));
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
    const std::string folded = Folded(key, caseSensitive, toUpper);
    if (insert) {
      FUZZ_EXPECT(dictionary.Insert(key.c_str(), step) == !key.empty());
      if (!key.empty()) model[folded] = step;
    }
    for (std::size_t length = 0; length <= key.size(); ++length) {
      ExpectFound(dictionary, model, key.substr(0, length), folded.substr(0, length));
    }
  }
  ExpectSame(dictionary, model);
  for (const auto& [key, value] : model) {  // a second walk, which empties it
    int taken = 0;
    FUZZ_EXPECT(dictionary.TakeFirst(taken) && taken == value);
  }
  return 0;
}
