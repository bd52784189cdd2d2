#pragma once

#include "messages/Fields.h"

namespace Vask {
class JsonObject;
}

namespace Messages {

// The one codec of all messages: plain functions that walk the tables of
// messages/Fields.h. The named functions beside the records (DecodeStruct_...,
// EncodeStruct_..., DestroyUnion_..., EncodeUnion_...) apply it to one table.
//
// It has no state and runs on any thread; a record belongs to one thread at a time.
// Every fault is reported through messages/ErrorReport.h and returned. Nothing
// throws but std::bad_alloc, which leaks nothing.

// Fills a record, which must be as its constructor left it, from `object`, field by
// field. At the first fault it reports the fault and returns false; the fields
// before it keep their values. For a record of Presence::Optional it reports every
// fault, leaves the field empty and returns true.
[[nodiscard]] bool DecodeRecord(const Vask::JsonObject& object, const RecordTable& table,
                                void* record);

// Returns a new object with one reference, which the caller owns; null, after a
// report, if a union in it has no alternative. The record must hold neither reals
// nor lists: no message with those is sent (EncodableRecord checks it).
[[nodiscard]] Vask::JsonObject* EncodeRecord(const RecordTable& table, const void* record);

// Returns the object that belongs under the union's key, or null, as above.
[[nodiscard]] Vask::JsonObject* EncodeUnion(const UnionTable& table, const void* choice);

// Destroys what the alternative owns and sets the tag to empty. Reports a tag of no
// alternative.
void DestroyUnion(const UnionTable& table, void* choice);

constexpr bool EncodableRecord(const RecordTable& table) {
  for (std::size_t i = 0; i < table.count; ++i) {
    const FieldKind kind = table.fields[i].kind;
    if (kind == FieldKind::Real || kind == FieldKind::List) return false;
  }
  return true;
}

template <class R>
[[nodiscard]] bool Decode(const Vask::JsonObject& object, R& record) {
  return DecodeRecord(object, kRecordTable<R>, &record);
}

template <class R>
[[nodiscard]] Vask::JsonObject* Encode(const R& record) {
  static_assert(EncodableRecord(kRecordTable<R>));
  return EncodeRecord(kRecordTable<R>, &record);
}

}  // namespace Messages
