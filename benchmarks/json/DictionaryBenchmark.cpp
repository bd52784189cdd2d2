#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "json/StrDict3.h"

// Compares the dictionary with std::map<std::string, ...>: building and destroying it,
// finding every key, and walking all pairs in order. The keys are C strings in random
// order, as in messages.
//
// There are two kinds of keys: words, like the names of members, and a word with a
// number, like the names of elements in lists ("stream17"). A trie walks the second kind
// faster, because these keys share most of their nodes.

namespace {

using Dictionary = Vask::StrDict3<int*>;
using Map = std::map<std::string, int*>;

constexpr std::array<const char*, 100> kWords = {
    "name",     "count",   "errors",  "silence", "version", "from",    "id",       "op",
    "data",     "active",  "address", "alarm",   "album",   "artist",  "bands",    "bitrate",
    "bitrates", "block",   "buffer",  "bypass",  "cache",   "card",    "channel",  "client",
    "clock",    "codec",   "codecs",  "color",   "comment", "config",  "cpu",      "date",
    "delay",    "device",  "disk",    "domain",  "enabled", "encoder", "event",    "events",
    "fade",     "file",    "files",   "filter",  "folder",  "format",  "frames",   "gain",
    "gate",     "genre",   "group",   "host",    "hour",    "input",   "interval", "items",
    "keys",     "length",  "level",   "limit",   "link",    "list",    "load",     "mail",
    "memory",   "message", "meter",   "mode",    "mount",   "mute",    "network",  "offset",
    "output",   "owner",   "packet",  "path",    "peak",    "phase",   "player",   "port",
    "preset",   "process", "queue",   "rate",    "region",  "release", "reply",    "result",
    "sample",   "server",  "slot",    "source",  "state",   "status",  "stereo",   "stream",
    "time",     "title",   "type",    "volume"};

int g_value = 1;

struct Keys {
  std::vector<std::string> texts;

  auto begin() const { return texts.begin(); }
  auto end() const { return texts.end(); }
};

Keys Shuffled(std::vector<std::string> texts) {
  std::shuffle(texts.begin(), texts.end(), std::mt19937(7));
  return {std::move(texts)};
}

Keys Words(std::int64_t count) {
  return Shuffled({kWords.begin(), kWords.begin() + count});
}

Keys Numbered(std::int64_t count) {
  std::vector<std::string> texts;
  for (std::int64_t i = 0; i < count; ++i) texts.push_back("stream" + std::to_string(i));
  return Shuffled(std::move(texts));
}

using MakeKeys = Keys (*)(std::int64_t count);

template <class Container>
void Fill(Container& container, const Keys& keys);

template <>
void Fill(Dictionary& dictionary, const Keys& keys) {
  for (const std::string& key : keys) dictionary.Insert(key.c_str(), &g_value);
}

template <>
void Fill(Map& map, const Keys& keys) {
  for (const std::string& key : keys) map[key.c_str()] = &g_value;
}

template <class Container, MakeKeys kMakeKeys>
void Build(benchmark::State& state) {
  const Keys keys = kMakeKeys(state.range(0));
  for ([[maybe_unused]] const auto& iteration : state) {
    Container container;
    Fill(container, keys);
    benchmark::DoNotOptimize(&container);
  }
}
BENCHMARK(Build<Dictionary, Words>)->Arg(10)->Arg(100);
BENCHMARK(Build<Map, Words>)->Arg(10)->Arg(100);
BENCHMARK(Build<Dictionary, Numbered>)->Arg(100);
BENCHMARK(Build<Map, Numbered>)->Arg(100);

const void* Look(const Dictionary& dictionary, const char* key) {
  return dictionary.FindValue(key);
}

const void* Look(const Map& map, const char* key) {
  return &map.find(key)->second;
}

template <class Container, MakeKeys kMakeKeys>
void Find(benchmark::State& state) {
  const Keys keys = kMakeKeys(state.range(0));
  Container container;
  Fill(container, keys);
  for ([[maybe_unused]] const auto& iteration : state) {
    for (const std::string& key : keys) benchmark::DoNotOptimize(Look(container, key.c_str()));
  }
}
BENCHMARK(Find<Dictionary, Words>)->Arg(10)->Arg(100);
BENCHMARK(Find<Map, Words>)->Arg(10)->Arg(100);
BENCHMARK(Find<Dictionary, Numbered>)->Arg(100);
BENCHMARK(Find<Map, Numbered>)->Arg(100);

// The work of both walks for each pair.
bool Visit(const char* key, int** value, void* context) {
  *static_cast<long*>(context) += *key + **value;
  return true;
}

void WalkAll(Dictionary& dictionary, long& sum) {
  dictionary.ForEach("", &Visit, &sum);
}

void WalkAll(Map& map, long& sum) {
  for (auto& [key, value] : map) Visit(key.c_str(), &value, &sum);
}

template <class Container, MakeKeys kMakeKeys>
void Walk(benchmark::State& state) {
  Container container;
  Fill(container, kMakeKeys(state.range(0)));
  for ([[maybe_unused]] const auto& iteration : state) {
    long sum = 0;
    WalkAll(container, sum);
    benchmark::DoNotOptimize(sum);
  }
}
BENCHMARK(Walk<Dictionary, Words>)->Arg(10)->Arg(100);
BENCHMARK(Walk<Map, Words>)->Arg(10)->Arg(100);
BENCHMARK(Walk<Dictionary, Numbered>)->Arg(100);
BENCHMARK(Walk<Map, Numbered>)->Arg(100);

}  // namespace
