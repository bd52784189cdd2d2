#include "tests/faults/FaultStand.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "net/Framing.h"
#include "tests/support/UpdateFrames.h"

namespace Agent::Tests {

using Vask::Tests::Binding;

namespace {

constexpr char kFinished[] =
    R"({"data":{},"from":"Corvane","id":0,"name":"SNMPupdateFinished","op":"broadcast"})";
// The agent refuses this with an error line.
constexpr char kFaulty[] =
    R"({"data":{"messageType":{"Streams":{}}},"from":"Corvane","id":0,"name":"SNMPmessage"})";

constexpr const char* kNames[] = {"P.0.0", "P.1.0", "P.1.1", "P.2.0",
                                  "P.2.1", "P.2.2", "P.2.3", "P.2.4"};

std::string Greeting() {
  std::string greeting;
  for (const char* body : Vask::Tests::kUpdateFrames) Vask::AppendFrame(greeting, body);
  Vask::AppendFrame(greeting, kFaulty);
  Vask::AppendFrame(greeting, kFinished);
  return greeting;
}

TestMachine WithPlan(FaultMachine& machine, int failingEvent) {
  if (failingEvent == FaultStand::kAllEvents) {
    machine.threadingPlan.FailAlways();
  } else {
    machine.threadingPlan.FailAt(failingEvent);
  }
  return machine.Seams();
}

}  // namespace

FaultMachine::FaultMachine() {
  peer.greeting = Greeting();
}

FaultStand::FaultStand(int failingEvent) : whole(WithPlan(*this, failingEvent)) {
  peer.link = &whole.process.Link();
}

BOOL FaultStand::Init() {
  HANDLE event = nullptr;
  AsnObjectIdentifier view{0, nullptr};
  return whole.process.Entries().Init(&event, &view);
}

BOOL FaultStand::Query(BYTE type, Binding& binding) {
  SnmpVarBindList bindings{&binding.Get(), 1};
  AsnInteger status = 0;
  AsnInteger index = 0;
  const BOOL served = whole.process.Entries().Query(type, &bindings, &status, &index);
  return served == TRUE && status == SNMP_ERRORSTATUS_NOERROR ? TRUE : FALSE;
}

std::vector<AsnInteger> FaultStand::TakeTraps() {
  std::vector<AsnInteger> numbers;
  TakenTrap trap;
  while (trap.TakeFrom(whole.process.Entries())) numbers.push_back(trap.specific);
  return numbers;
}

std::string FaultStand::Get(const std::string& name) {
  Binding binding(name);
  return Query(SNMP_PDU_GET, binding) == TRUE ? name + " = " + binding.Value() : "no " + name;
}

std::vector<std::string> FaultStand::GetAll() {
  std::vector<std::string> values;
  for (const char* const name : kNames) values.push_back(Get(name));
  return values;
}

std::vector<std::string> FaultStand::Walk() {
  Binding binding("P");
  std::vector<std::string> names;
  while (names.size() <= std::size(kNames) &&
         (binding.Again(), Query(SNMP_PDU_GETNEXT, binding) == TRUE))
    names.push_back(binding.Name());
  return names;
}

std::string FaultMachine::LogText() const {
  namespace fs = std::filesystem;
  std::vector<fs::path> paths;
  for (const auto& entry : fs::recursive_directory_iterator(disk.NativePath()))
    if (entry.is_regular_file()) paths.push_back(entry.path());
  std::sort(paths.begin(), paths.end());
  std::ostringstream text;
  for (const fs::path& path : paths)
    if (fs::file_size(path) != 0) text << std::ifstream(path).rdbuf();
  return text.str();
}

std::vector<std::string> FaultMachine::LogLines() const {
  constexpr std::size_t kStamp = sizeof "12:00:00.000: " - 1;
  std::vector<std::string> lines;
  std::istringstream text(LogText());
  for (std::string line; std::getline(text, line);)
    lines.push_back(line.size() >= kStamp ? line.substr(kStamp) : line);
  return lines;
}

int FaultMachine::CountLines(const std::string& line) const {
  const auto lines = LogLines();
  return static_cast<int>(std::count(lines.begin(), lines.end(), line));
}

std::vector<std::string> UpdatedValues() {
  return {"P.0.0 = INT 0",          "P.1.0 = STRING 'Corvane'",
          "P.1.1 = STRING '4.2.1'", "P.2.0 = INT 12",
          "P.2.1 = INT 1",          "P.2.2 = INT 8",
          "P.2.3 = INT 2",          "P.2.4 = INT 1"};
}

std::vector<std::string> FirstValues() {
  return {"P.0.0 = INT 1",          "P.1.0 = STRING 'Corvane'",
          "P.1.1 = STRING '1.x.x'", "P.2.0 = INT 0",
          "P.2.1 = INT 0",          "P.2.2 = INT 0",
          "P.2.3 = INT 0",          "P.2.4 = INT 0"};
}

}  // namespace Agent::Tests
