#include "simulator/Command.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "net/Framing.h"
#include "simulator/Session.h"
#include "simulator/Text.h"

namespace Simulator {

namespace {

using std::chrono::milliseconds;

// Makes the bytes to send when the command runs, because values may change after
// the line was read.
using Bytes = std::function<std::string(const CorvaneServer& server)>;

constexpr std::uint32_t kAwaitMs = 30'000;

std::string InQuotes(std::string_view text) {
  return '"' + std::string(text) + '"';
}

bool Fail(std::string& error, std::string text) {
  error = std::move(text);
  return false;
}

// ---- sending

bool ParseGroup(std::string_view rest, Bytes& bytes, std::string& error) {
  for (const Group group : kGroups) {
    if (!EqualsIgnoringCase(rest, GroupName(group))) continue;
    bytes = [group](const CorvaneServer& server) { return server.FrameOfGroup(group); };
    return true;
  }
  if (EqualsIgnoringCase(rest, "Finished")) {
    bytes = [](const CorvaneServer&) { return CorvaneServer::FrameOfFinish(); };
    return true;
  }
  if (EqualsIgnoringCase(rest, "Update")) {
    bytes = [](const CorvaneServer& server) { return server.FramesOfUpdate(); };
    return true;
  }
  return Fail(error, "unknown group " + InQuotes(rest) +
                         "; the groups are Product Streams StreamMonitors AudioSources, Finished "
                         "and Update (all of them)");
}

bool ParseMessage(std::string_view rest, Bytes& bytes, std::string& error) {
  const std::string name(TakeWord(rest));
  if (name.empty()) return Fail(error, "expected the name of a message");
  const std::string data(rest.empty() ? "{}" : rest);
  if (!IsOneJsonValue(data)) return Fail(error, "the body is not JSON: " + data);
  bytes = [name, data](const CorvaneServer&) { return CorvaneServer::FrameOfMessage(name, data); };
  return true;
}

bool ParseRaw(std::string_view rest, Bytes& bytes, std::string& error) {
  std::string text;
  if (rest.empty()) return Fail(error, "expected the bytes to send");
  if (!Unescape(rest, text, error)) return false;
  bytes = [text](const CorvaneServer&) { return text; };
  return true;
}

bool ParseFrame(std::string_view rest, Bytes& bytes, std::string& error) {
  Bytes body;
  if (!ParseRaw(rest, body, error)) return false;
  bytes = [body](const CorvaneServer& server) {
    std::string frame;
    Vask::AppendFrame(frame, body(server));
    return frame;
  };
  return true;
}

bool Sent(Session& session, const std::string& bytes, bool done, std::string& error) {
  if (!done) return Fail(error, "not connected, or the connection ended meanwhile");
  session.Print("sent " + std::to_string(bytes.size()) + " bytes");
  return true;
}

Command SendCommand(Bytes bytes) {
  return [bytes = std::move(bytes)](Session& session, std::string& error) {
    const std::string text = bytes(session.Server());
    return Sent(session, text, session.Server().Send(text), error);
  };
}

// ---- split

using Positions = std::vector<std::size_t>;

bool ParsePositions(std::string_view text, Positions& positions, std::string& error) {
  while (!text.empty()) {
    const std::size_t comma = std::min(text.find(','), text.size());
    std::uint32_t position = 0;
    if (!ParseCount(text.substr(0, comma), position) || position == 0 ||
        (!positions.empty() && position <= positions.back())) {
      return Fail(error, "expected ascending positions from 1 on, as in 3,7, or *");
    }
    positions.push_back(position);
    text.remove_prefix(std::min(comma + 1, text.size()));
  }
  return !positions.empty() || Fail(error, "expected positions and a command that sends");
}

Positions EveryPosition(std::size_t length) {
  Positions positions;
  for (std::size_t position = 1; position < length; ++position) positions.push_back(position);
  return positions;
}

Command SplitCommand(Positions positions, Bytes bytes) {
  return [positions = std::move(positions), bytes = std::move(bytes)](Session& session,
                                                                      std::string& error) {
    const std::string text = bytes(session.Server());
    if (!positions.empty() && positions.back() >= text.size()) {
      return Fail(error, "position " + std::to_string(positions.back()) +
                             " does not lie within the " + std::to_string(text.size()) + " bytes");
    }
    // With the usual pause, cutting at every position would take too long.
    const bool everywhere = positions.empty();
    const Positions& cuts = everywhere ? EveryPosition(text.size()) : positions;
    const bool done =
        session.Server().SendSplit(text, cuts, everywhere ? milliseconds{1} : milliseconds{20});
    return Sent(session, text, done, error);
  };
}

bool ParseSending(std::string_view line, Bytes& bytes, std::string& error);

bool ParseSplit(std::string_view rest, Command& command, std::string& error) {
  const std::string_view where = TakeWord(rest);
  Positions positions;  // empty: everywhere
  Bytes bytes;
  if (where != "*" && !ParsePositions(where, positions, error)) return false;
  if (!ParseSending(rest, bytes, error)) return false;
  command = SplitCommand(std::move(positions), std::move(bytes));
  return true;
}

// ---- values

std::string_view WithoutQuotes(std::string_view text) {
  const bool quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
  return quoted ? text.substr(1, text.size() - 2) : text;
}

// Tries the value on a separate set first, so that a bad line is refused before
// any command runs.
bool ParseSet(std::string_view rest, Command& command, std::string& error) {
  const std::string name(TakeWord(rest));
  std::string text;
  if (name.empty() || rest.empty()) return Fail(error, "expected a name and a value");
  if (!Unescape(WithoutQuotes(rest), text, error)) return false;
  if (Values trial; !trial.Set(name, text, error)) return false;
  command = [name, text](Session& session, std::string& fault) {
    return session.Server().Set(name, text, fault);
  };
  return true;
}

bool ParseShow(std::string_view, Command& command, std::string&) {
  command = [](Session& session, std::string&) {
    for (const std::string& line : session.Server().ValueLines()) session.Print(line);
    return true;
  };
  return true;
}

// ---- the connection

bool ParseDrop(std::string_view, Command& command, std::string&) {
  command = [](Session& session, std::string& error) {
    return session.Server().Drop() || Fail(error, "not connected");
  };
  return true;
}

bool ParseMilliseconds(std::string_view rest, milliseconds& time, std::string& error) {
  std::uint32_t count = 0;
  if (!ParseCount(rest, count)) {
    return Fail(error, "expected a number of milliseconds, not " + InQuotes(rest));
  }
  time = milliseconds{count};
  return true;
}

bool ParseRefuse(std::string_view rest, Command& command, std::string& error) {
  milliseconds time{};
  if (!ParseMilliseconds(rest, time, error)) return false;
  command = [time](Session& session, std::string&) {
    session.Server().RefuseFor(time);
    return true;
  };
  return true;
}

bool ParseSwitch(std::string_view rest, bool& on, std::string& error) {
  on = EqualsIgnoringCase(rest, "on");
  return on || EqualsIgnoringCase(rest, "off") ||
         Fail(error, "expected on or off, not " + InQuotes(rest));
}

bool ParseAnswer(std::string_view rest, Command& command, std::string& error) {
  bool on = false;
  if (!ParseSwitch(rest, on, error)) return false;
  command = [on](Session& session, std::string&) {
    session.Server().SetAnswering(on);
    return true;
  };
  return true;
}

bool ParseRead(std::string_view rest, Command& command, std::string& error) {
  bool on = false;
  if (!ParseSwitch(rest, on, error)) return false;
  command = [on](Session& session, std::string&) {
    session.Server().SetReading(on);
    return true;
  };
  return true;
}

// ---- waiting and ending

bool ParseWait(std::string_view rest, Command& command, std::string& error) {
  milliseconds time{};
  if (!ParseMilliseconds(rest, time, error)) return false;
  command = [time](Session& session, std::string&) {
    session.Wait(time);
    return true;
  };
  return true;
}

bool ParseAwait(std::string_view rest, Command& command, std::string& error) {
  const std::string what(TakeWord(rest));
  milliseconds patience{kAwaitMs};
  if (what.empty()) return Fail(error, "expected connected, disconnected or a message's name");
  if (!rest.empty() && !ParseMilliseconds(rest, patience, error)) return false;
  command = [what, patience](Session& session, std::string& fault) {
    bool came = false;
    if (what == "connected" || what == "disconnected") {
      came = session.AwaitConnected(what == "connected", patience);
    } else {
      came = session.AwaitMessage(what, patience);
    }
    return came ||
           Fail(fault, what + " did not come within " + std::to_string(patience.count()) + " ms");
  };
  return true;
}

bool ParseHelp(std::string_view, Command& command, std::string&) {
  command = [](Session& session, std::string&) {
    session.Print(CommandHelp());
    return true;
  };
  return true;
}

bool ParseQuit(std::string_view, Command& command, std::string&) {
  command = [](Session& session, std::string&) {
    session.Quit();
    return true;
  };
  return true;
}

// ---- the table

struct Verb {
  const char* name;
  const char* arguments;
  const char* help;  // may hold line feeds
  // Exactly one of the two is set. A command that sends sets the second one and
  // can be split.
  bool (*parse)(std::string_view rest, Command& command, std::string& error);
  bool (*parseBytes)(std::string_view rest, Bytes& bytes, std::string& error);
};

constexpr std::array kVerbs{
    Verb{"set", "NAME VALUE",
         "set a value; a text may be in quotes and hold the escapes of `raw`\n"
         "(no limit is checked, so you can send values that the agent refuses)",
         ParseSet, nullptr},
    Verb{"show", "", "print all values", ParseShow, nullptr},
    Verb{"send", "GROUP",
         "send one group with its present values: Product, Streams, StreamMonitors,\n"
         "AudioSources, Finished, or Update for all of them",
         nullptr, ParseGroup},
    Verb{"message", "NAME [JSON]", "send any message, with the body JSON or {}", nullptr,
         ParseMessage},
    Verb{"frame", "TEXT", "send any text as a frame; escapes as in `raw`", nullptr, ParseFrame},
    Verb{"raw", "BYTES", "send bytes; \\n \\r \\t \\0 \\\\ and \\xHH are single bytes", nullptr,
         ParseRaw},
    Verb{"split", "POSITIONS COMMAND",
         "run one of the four commands above, but send its bytes in pieces:\n"
         "3,7 cuts after byte 3 and byte 7, * cuts after every byte",
         ParseSplit, nullptr},
    Verb{"drop", "", "end the connection in order", ParseDrop, nullptr},
    Verb{"refuse", "MS", "refuse connections for MS milliseconds; the present one stays",
         ParseRefuse, nullptr},
    Verb{"answer", "on|off", "answer SNMPupdate with all groups (at start: on)", ParseAnswer,
         nullptr},
    Verb{"read", "on|off", "read what the agent sends (at start: on)", ParseRead, nullptr},
    Verb{"wait", "MS", "do nothing for MS milliseconds", ParseWait, nullptr},
    Verb{"await", "WHAT [MS]",
         "wait for `connected`, `disconnected`, or the next message with the name\n"
         "WHAT; fails after MS milliseconds (default: 30000)",
         ParseAwait, nullptr},
    Verb{"help", "", "print this list", ParseHelp, nullptr},
    Verb{"quit", "", "end the program", ParseQuit, nullptr},
};

const Verb* FindVerb(std::string_view name) {
  const auto found = std::find_if(kVerbs.begin(), kVerbs.end(), [&](const Verb& verb) {
    return EqualsIgnoringCase(verb.name, name);
  });
  return found == kVerbs.end() ? nullptr : found;
}

bool ParseSending(std::string_view line, Bytes& bytes, std::string& error) {
  const std::string_view name = TakeWord(line);
  const Verb* const verb = FindVerb(name);
  if (verb == nullptr || verb->parseBytes == nullptr) {
    return Fail(error,
                "expected a command that sends (send, message, frame, raw), not " + InQuotes(name));
  }
  return verb->parseBytes(line, bytes, error);
}

}  // namespace

bool ParseCommand(std::string_view line, Command& command, std::string& error) {
  std::string_view rest = line;
  const std::string_view name = TakeWord(rest);
  if (name.empty() || name.front() == '#') {
    command = [](Session&, std::string&) { return true; };
    return true;
  }
  const Verb* const verb = FindVerb(name);
  if (verb == nullptr) {
    return Fail(error, "unknown command " + InQuotes(name) + "; `help` lists the commands");
  }
  if (*verb->arguments == '\0' && !rest.empty()) {
    return Fail(error, std::string(verb->name) + " takes no argument, not " + InQuotes(rest));
  }
  if (verb->parse != nullptr) return verb->parse(rest, command, error);
  Bytes bytes;
  if (!verb->parseBytes(rest, bytes, error)) return false;
  command = SendCommand(std::move(bytes));
  return true;
}

std::string CommandHelp() {
  constexpr std::size_t kColumn = 26;
  std::string text;
  for (const Verb& verb : kVerbs) {
    std::string head = std::string("  ") + verb.name + ' ' + verb.arguments;
    head.resize(std::max(kColumn, head.size() + 1), ' ');
    text += head;
    for (const char* c = verb.help; *c != '\0'; ++c) {
      text += *c;
      if (*c == '\n') text.append(kColumn, ' ');
    }
    text += '\n';
  }
  text += "A line that begins with # is a comment. The values are:\n";
  return text + Values::Names("\n", "  ");
}

}  // namespace Simulator
