#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Check {

using Oid = std::vector<std::uint32_t>;

// "1.3.6.1.4.1.32473.333.0.0.0"
[[nodiscard]] std::string DottedText(const Oid& oid);

// One variable of a response.
struct SnmpBinding {
  enum class Kind { kNumber, kText, kMissing, kOther };  // kMissing: the agent has no such variable
  Oid oid;
  Kind kind = Kind::kOther;
  std::int64_t number = 0;
  std::string text;
};

struct SnmpResponse {
  std::int64_t requestId = 0;
  std::int64_t errorStatus = 0;  // 0 none, 2 noSuchName
  std::vector<SnmpBinding> bindings;
};

// An SNMPv2c Get request for `oids`. Each of them has at least two numbers, and the first is 1.
[[nodiscard]] std::string EncodeGet(std::string_view community, std::int32_t requestId,
                                    const std::vector<Oid>& oids);

// Reads a datagram. Empty if it is not a whole SNMP response. Any bytes are safe, and the memory
// grows only with their number.
[[nodiscard]] std::optional<SnmpResponse> DecodeResponse(std::string_view datagram);

}  // namespace Check
