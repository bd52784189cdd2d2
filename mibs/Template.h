#pragma once

#include <string>

namespace Mibs {

// Fills in a template with facts from the agent's tables, so that no file for a
// monitoring system repeats a number by hand. Any thread.
//
//   @{prefix}                    a fact about the agent
//   @{StreamsErrors.instance}    a fact about that variable or trap
//   @each trap                   a line of its own: repeats the lines from here
//   @end                         to the line "@end" for each trap; in them,
//   @{number}                    is a fact about the current trap
//
// `@each variable` repeats the lines for each variable, `@each number` for each
// integer variable, `@each text` for each text variable. Variables come in the
// order of a walk, traps in the order of their numbers. Blocks cannot be nested.
// Everything else is copied.
//
// Facts about the agent:
//   enterprise  E, the enterprise number
//   prefix      1.3.6.1.4.1.E.333
//   tail        E.333
//   version     version of the agent
//   port        port of the link
//   log-folder  folder of the log below the common application data
// Facts about a variable:
//   name        StreamsErrors
//   oid         1.3.6.1.4.1.E.333.2.1, the name that a walk returns
//   instance    the same with .0 at the end, the name that managers request
//   metric      corvane_streams_failed
//   meaning     Number of streams in error.
// Facts about a trap:
//   name        TrapStreamsFailed
//   oid         1.3.6.1.4.1.E.333.0.13 (RFC 3584, section 3.1)
//   tail        E.333.0.13: every spelling of the oid ends in it
//   number      13
//   sentence    Corvane: at least one stream is in error.
//   more        further text; may be empty
//   severity    INFORMATIONAL, MAJOR or CRITICAL
//   raised      stream errors rise from 0
//
// Throws std::invalid_argument if the template uses an unknown word; the
// exception's text names the word.
[[nodiscard]] std::string FillTemplate(const std::string& text);

}  // namespace Mibs
