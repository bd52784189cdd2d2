#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <new>
#include <type_traits>

#include "json/FoldedKey.h"
#include "json/KeyFolding.h"

namespace Messages {

// How a record is described. A record is a plain struct; right below it stands
// its Description: one row per field, in the order in which the fields are
// read and written.
//
//   struct Streams {
//     std::int32_t m_Count = 0;
//     char m_Name[65] = "";
//   };
//   template <>
//   struct Description<Streams> {
//     static constexpr char kDecoder[] = "DecodeStruct_Streams";
//     static constexpr Field kRows[] = {
//         Integer<&Streams::m_Count>("Count", Between(0, 1024)),
//         Text<&Streams::m_Name>("Name"),
//     };
//   };
//
// The rows become one constant table per record (kRecordTable), which the
// plain functions of messages/Codec.h walk. Two rows of one name do not compile.
// Everything here is evaluated by the compiler and may be used from any thread.

struct RecordTable;
struct UnionTable;
struct ListOperations;

enum class FieldKind : std::uint8_t { Text, Integer, Real, Record, List, Union };

// Inclusive bounds of an integer field. A missing bound is not checked.
struct Range {
  bool hasLower = false;
  bool hasUpper = false;
  std::int32_t lower = 0;
  std::int32_t upper = 0;
};
inline constexpr Range kAnyInteger{};
constexpr Range Between(std::int32_t lower, std::int32_t upper) {
  return {true, true, lower, upper};
}
constexpr Range AtLeast(std::int32_t lower) {
  return {true, false, lower, 0};
}

// One row. `name` is the JSON key as it stands in the protocol; the member is
// called m_ and that name. `member` answers the address of the member in a
// record; of the rest only what belongs to the kind is set.
struct Field {
  Vask::FoldedKey name;
  FieldKind kind;
  void* (*member)(void* record);
  std::uint32_t capacity = 0;            // Text: bytes without the terminating zero
  Range range = kAnyInteger;             // Integer
  const RecordTable* record = nullptr;   // Record; List: the element's
  const ListOperations* list = nullptr;  // List
  const UnionTable* choice = nullptr;    // Union
};

// Required: the first fault ends the decode. Optional: the record carries a
// partial update; what is absent or faulty stays empty and the decode succeeds.
enum class Presence : std::uint8_t { Required, Optional };

// `decoder` is the name under which range faults are reported.
struct RecordTable {
  const char* decoder;
  const Field* fields;
  std::size_t count;
  Presence presence;
};

// One alternative of a union; its number is its place in the table. One
// without fields has no record and no storage.
struct Alternative {
  Vask::FoldedKey name;
  const RecordTable* record = nullptr;
  void* (*member)(void* choice) = nullptr;
  void (*construct)(void* member) = nullptr;
  void (*destroy)(void* member) = nullptr;
};

// `path` names the union from its outermost record on ("SNMPtrap::trapType");
// its last part is the JSON key. `tag` answers the address of the tag.
struct UnionTable {
  const char* path;
  const char* key;
  const Alternative* alternatives;
  std::uint32_t count;
  std::uint32_t* (*tag)(void* choice);
};

// What a list of unknown elements must be able to do. `insert` takes the
// element over if it answers true.
struct ListOperations {
  void* (*create)();
  void (*destroy)(void* element);
  bool (*insert)(void* list, const char* key, void* element);
};

// To be specialised for every record (kDecoder, kRows, and kPresence where it is
// not Required) and for every union (kPath, kAlternatives).
template <class T>
struct Description;

// --- What follows turns descriptions into tables. ---

inline constexpr Vask::KeyFolding kToLower(Vask::KeyFolding::Letters::ToLower);

constexpr char FoldAscii(char c) {
  return static_cast<char>(kToLower.Fold(c));
}

constexpr bool SameName(const char* a, const char* b) {
  for (; FoldAscii(*a) == FoldAscii(*b); ++a, ++b) {
    if (*a == '\0') return true;
  }
  return false;
}

// Rows is a sequence of anything that has a `name`. Case is ignored, since
// look-ups ignore it.
template <class Rows>
constexpr bool HasDuplicateNames(const Rows& rows) {
  for (auto a = std::begin(rows); a != std::end(rows); ++a) {
    for (auto b = std::next(a); b != std::end(rows); ++b) {
      if (SameName(a->name.Text(), b->name.Text())) return true;
    }
  }
  return false;
}

// The part of a path after its last "::".
constexpr const char* LastPart(const char* path) {
  const char* last = path;
  for (const char* p = path; *p != '\0'; ++p) {
    if (p[0] == ':' && p[1] == ':') last = p + 2;
  }
  return last;
}

template <class M>
struct MemberOf;
template <class Owner, class Type>
struct MemberOf<Type Owner::*> {
  using OwnerType = Owner;
  using MemberType = Type;
};
template <auto Member>
using OwnerType = typename MemberOf<decltype(Member)>::OwnerType;
template <auto Member>
using MemberType = typename MemberOf<decltype(Member)>::MemberType;

template <auto Member>
void* AddressOf(void* owner) {
  return &(static_cast<OwnerType<Member>*>(owner)->*Member);
}

template <class R>
constexpr Presence PresenceOf() {
  if constexpr (requires { Description<R>::kPresence; }) {
    return Description<R>::kPresence;
  } else {
    return Presence::Required;
  }
}

template <class R>
constexpr RecordTable MakeRecordTable() {
  if constexpr (requires { Description<R>::kRows; }) {
    static_assert(!HasDuplicateNames(Description<R>::kRows), "two fields of one name");
    return {Description<R>::kDecoder, Description<R>::kRows, std::size(Description<R>::kRows),
            PresenceOf<R>()};
  } else {  // a record that holds nothing
    return {Description<R>::kDecoder, nullptr, 0, Presence::Required};
  }
}

template <class R>
inline constexpr RecordTable kRecordTable = MakeRecordTable<R>();

template <class U>
constexpr UnionTable MakeUnionTable() {
  constexpr auto& alternatives = Description<U>::kAlternatives;
  static_assert(!HasDuplicateNames(alternatives), "two alternatives of one name");
  static_assert(U::kEmpty == std::size(alternatives),
                "the empty tag is the one past the last alternative");
  return {Description<U>::kPath, LastPart(Description<U>::kPath), alternatives, U::kEmpty,
          [](void* choice) { return &static_cast<U*>(choice)->m_tag; }};
}

template <class U>
inline constexpr UnionTable kUnionTable = MakeUnionTable<U>();

template <class L>
inline constexpr ListOperations kListOperations = {
    []() -> void* { return new typename L::Element(); },
    [](void* element) { delete static_cast<typename L::Element*>(element); },
    [](void* list, const char* key, void* element) {
      return static_cast<L*>(list)->Insert(key, static_cast<typename L::Element*>(element));
    },
};

// --- The rows themselves. ---

// char m_x[N + 1]: at most N bytes.
template <auto Member>
constexpr Field Text(const char* name) {
  using Array = MemberType<Member>;
  static_assert(std::is_same_v<std::remove_extent_t<Array>, char> && std::extent_v<Array> > 1);
  return {name, FieldKind::Text, &AddressOf<Member>, std::extent_v<Array> - 1};
}

template <auto Member>
constexpr Field Integer(const char* name, Range range = kAnyInteger) {
  static_assert(std::is_same_v<MemberType<Member>, std::int32_t>);
  return {name, FieldKind::Integer, &AddressOf<Member>, 0, range};
}

template <auto Member>
constexpr Field Real(const char* name) {
  static_assert(std::is_same_v<MemberType<Member>, double>);
  return {name, FieldKind::Real, &AddressOf<Member>};
}

// A record inside the record.
template <auto Member>
constexpr Field SubRecord(const char* name) {
  return {name, FieldKind::Record, &AddressOf<Member>,
          0,    kAnyInteger,       &kRecordTable<MemberType<Member>>};
}

// A KeyedList; its elements' Description names the element decoder.
template <auto Member>
constexpr Field List(const char* name) {
  using L = MemberType<Member>;
  return {name,
          FieldKind::List,
          &AddressOf<Member>,
          0,
          kAnyInteger,
          &kRecordTable<typename L::Element>,
          &kListOperations<L>};
}

// The row takes its JSON key from the union's path.
template <auto Member>
constexpr Field Union() {
  using U = MemberType<Member>;
  return {
      kUnionTable<U>.key, FieldKind::Union, &AddressOf<Member>, 0, kAnyInteger, nullptr, nullptr,
      &kUnionTable<U>};
}

// An alternative that carries a record, which lies in the union's storage.
template <auto Member>
constexpr Alternative Carrying(const char* name) {
  using R = MemberType<Member>;
  return {name, &kRecordTable<R>, &AddressOf<Member>, [](void* member) { ::new (member) R(); },
          [](void* member) { static_cast<R*>(member)->~R(); }};
}

constexpr Alternative FieldLess(const char* name) {
  return {name};
}

}  // namespace Messages
