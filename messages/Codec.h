#pragma once

#include "messages/Fields.h"

namespace Vask {
class JsonObject;
}

namespace Messages {

// The one codec of all messages: plain functions that walk the tables of
// messages/Fields.h. The named functions beside the records (DecodeStruct_...,
// EncodeStruct_..., DestroyUnion_..., EncodeUnion_...) are this codec applied
// to one table.
//
// It holds no state and runs on whichever thread calls it; a record belongs to
// one thread at a time. Faults are reported through messages/ErrorReport.h and
// answered; nothing throws but std::bad_alloc, which leaves nothing behind.

// Fills a record, which must be as its constructor left it, from `object`, field
// by field. The first fault is reported and answers false; the fields before it
// keep what they got. A record of Presence::Optional reports every fault, leaves
// the field empty and answers true.
[[nodiscard]] bool DecodeRecord(const Vask::JsonObject& object, const RecordTable& table,
                                void* record);

// A new object with one reference, the caller's; null after a report when a union
// in it has no alternative. The record must hold neither reals nor lists: no
// message with those is ever sent (EncodableRecord checks it).
[[nodiscard]] Vask::JsonObject* EncodeRecord(const RecordTable& table, const void* record);

// The object that stands under the union's key, as above.
[[nodiscard]] Vask::JsonObject* EncodeUnion(const UnionTable& table, const void* choice);

// Destroys what the alternative owns and sets the tag to empty. A tag that names
// nothing is reported.
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
