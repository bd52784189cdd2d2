#pragma once

#include <cstdint>

#include "json/FoldedKey.h"

namespace Vask {
class JsonObject;
}

namespace Messages {

// Typed reading and writing of one member of a JSON object. The objects of this
// system match names without regard to case. Every fault is reported through
// messages/ErrorReport.h. No other thread may change the object meanwhile.
//
// An absent member fails a getter with a report, or silently if `optional` is set.

// Copies a text of at most `maximum` bytes and its terminating zero into
// `destination`, which must have room for maximum + 1. A longer text is refused and
// not cut. On failure the destination is the empty text.
[[nodiscard]] bool GetStrProperty(const Vask::JsonObject& object, const Vask::FoldedKey& name,
                                  char* destination, std::uint32_t maximum, bool optional);

// Stores the low 32 bits of an integral number. A number with a decimal point is
// refused. On failure the destination is 0.
[[nodiscard]] bool GetIntProperty(const Vask::JsonObject& object, const Vask::FoldedKey& name,
                                  std::int32_t& destination, bool optional);

// Stores any number. On failure the destination is 0.0.
[[nodiscard]] bool GetFloatProperty(const Vask::JsonObject& object, const Vask::FoldedKey& name,
                                    double& destination);

// Returns the nested object, which the enclosing one still owns, or null. A member
// that is no object is not reported.
[[nodiscard]] Vask::JsonObject* GetObjProperty(const Vask::JsonObject& object,
                                               const Vask::FoldedKey& name, bool optional);

// Store a new value under the name, to which the object holds the only reference.
// They throw std::bad_alloc.
void SetStrProperty(Vask::JsonObject& object, const char* name, const char* text);
void SetIntProperty(Vask::JsonObject& object, const char* name, std::int32_t value);

}  // namespace Messages
