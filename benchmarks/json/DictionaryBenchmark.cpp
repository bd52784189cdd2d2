#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "json/StrDict3.h"

// The dictionary against std::map<std::string, ...> doing the same job: built
// and destroyed, every key found, all pairs walked in order. Keys come as
// C strings in an order that is no order, as they do in messages.

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

std::vector<const char*> Keys(const benchmark::State& state) {
  std::vector<const char*> keys(kWords.begin(), kWords.begin() + state.range(0));
  std::shuffle(keys.begin(), keys.end(), std::mt19937(7));
  return keys;
}

template <class Container>
void Fill(Container& container, const std::vector<const char*>& keys);

template <>
void Fill(Dictionary& dictionary, const std::vector<const char*>& keys) {
  for (const char* key : keys) dictionary.Insert(key, &g_value);
}

template <>
void Fill(Map& map, const std::vector<const char*>& keys) {
  for (const char* key : keys) map[key] = &g_value;
}

template <class Container>
void Build(benchmark::State& state) {
  const auto keys = Keys(state);
  for (auto _ : state) {
    Container container;
    Fill(container, keys);
    benchmark::DoNotOptimize(&container);
  }
}
BENCHMARK(Build<Dictionary>)->Arg(10)->Arg(100);
BENCHMARK(Build<Map>)->Arg(10)->Arg(100);

void FindDictionary(benchmark::State& state) {
  const auto keys = Keys(state);
  Dictionary dictionary;
  Fill(dictionary, keys);
  for (auto _ : state) {
    for (const char* key : keys) benchmark::DoNotOptimize(dictionary.FindValue(key));
  }
}
BENCHMARK(FindDictionary)->Arg(10)->Arg(100);

void FindMap(benchmark::State& state) {
  const auto keys = Keys(state);
  Map map;
  Fill(map, keys);
  for (auto _ : state) {
    for (const char* key : keys) benchmark::DoNotOptimize(map.find(key));
  }
}
BENCHMARK(FindMap)->Arg(10)->Arg(100);

// What both walks do with a pair.
bool Visit(const char* key, int** value, void* context) {
  *static_cast<long*>(context) += *key + **value;
  return true;
}

void WalkDictionary(benchmark::State& state) {
  Dictionary dictionary;
  Fill(dictionary, Keys(state));
  for (auto _ : state) {
    long sum = 0;
    dictionary.ForEach("", &Visit, &sum);
    benchmark::DoNotOptimize(sum);
  }
}
BENCHMARK(WalkDictionary)->Arg(10)->Arg(100);

void WalkMap(benchmark::State& state) {
  Map map;
  Fill(map, Keys(state));
  for (auto _ : state) {
    long sum = 0;
    for (auto& [key, value] : map) Visit(key.c_str(), &value, &sum);
    benchmark::DoNotOptimize(sum);
  }
}
BENCHMARK(WalkMap)->Arg(10)->Arg(100);

}  // namespace
