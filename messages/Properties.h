#pragma once

#include <cstdint>

#include "json/FoldedKey.h"

namespace Vask {
class Json;
class JsonObject;
}  // namespace Vask

namespace Messages {

// Typed reading and writing of one member of a JSON object. Names are,
// in the objects of this system, matched without regard to
// case. Every fault is reported through messages/ErrorReport.h. The caller's
// thread must be the only one that changes the object meanwhile.
//
// "Optional" silences the report of an absent member; the answer stays false.

// The member's value of whatever kind, or null. Never reports. The value stays
// owned by the object.
Vask::Json* GetProperty(const Vask::JsonObject& object, const Vask::FoldedKey& name);

// Copies a text of at most `maximum` bytes and its terminating zero into
// `destination`, which has room for maximum + 1. A longer one is refused, never
// cut. The destination is the empty text whenever the answer is false.
bool GetStrProperty(const Vask::JsonObject& object, const Vask::FoldedKey& name, char* destination,
                    std::uint32_t maximum, bool optional);

// Takes an integral number's low 32 bits. A number written with a decimal point
// is refused. 0 whenever the answer is false.
bool GetIntProperty(const Vask::JsonObject& object, const Vask::FoldedKey& name,
                    std::int32_t& destination, bool optional);

// Takes any number. 0.0 whenever the answer is false.
bool GetFloatProperty(const Vask::JsonObject& object, const Vask::FoldedKey& name,
                      double& destination);

// The nested object, which stays owned by the enclosing one; null when there is
// none. A member that is not an object is never reported.
Vask::JsonObject* GetObjProperty(const Vask::JsonObject& object, const Vask::FoldedKey& name,
                                 bool optional);

// Store a new value under the name; the object holds the only reference to it.
void SetStrProperty(Vask::JsonObject& object, const char* name, const char* text);
void SetIntProperty(Vask::JsonObject& object, const char* name, std::int32_t value);

}  // namespace Messages
