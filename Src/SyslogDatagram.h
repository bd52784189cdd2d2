#pragma once

#include <cstddef>
#include <string_view>

namespace Vask {

// A log line as a syslog server takes it (RFC 3164's priority in front, neither
// time stamp nor host name): such as "<134>Info: text". Facility 16 ("local
// use 0"); severity 3 for "Error: " and "TRACE: ", 4 for "Warning: ", 6 for
// "Info: ".

// Longest datagram (RFC 3164, section 4.1); a longer line is cut.
inline constexpr std::size_t kSyslogCapacity = 1024;

// Answers the datagram's length. There is no terminating zero.
std::size_t BuildSyslogDatagram(std::string_view prefix, std::string_view text,
                                char (&datagram)[kSyslogCapacity]) noexcept;

}  // namespace Vask
