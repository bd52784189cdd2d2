#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <new>
#include <string_view>
#include <type_traits>

#include "json/Ascii.h"
#include "json/FoldedKey.h"
#include "json/StrDict3.h"

namespace Messages {

// How a record is described. A record is a plain struct. Its Description is below it: one
// row for each field, in the order in which the fields are read and written.
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
// A union is a struct with a tag and the storage of its alternatives. One word
// names the tag, the member and the JSON name of an alternative:
//
//   struct state {
//     enum : std::uint32_t { kStopped, kPlaying, kEmpty };
//     std::uint32_t m_tag = kEmpty;
//     union {
//       Level m_Playing;
//     };
//   };
//   template <>
//   struct Description<state> {
//     static constexpr char kPath[] = "Program::state";
//     static constexpr Alternative kAlternatives[] = {
//         MESSAGES_EMPTY_ALTERNATIVE(state, Stopped),
//         MESSAGES_ALTERNATIVE(state, Playing),
//     };
//   };
//
// The rows become one constant table per record and union (kRecordTable,
// kUnionTable), which the plain functions of messages/Codec.h walk. Two rows of one
// name do not compile, nor do alternatives that are not in the order of their tags.
// The compiler evaluates everything here but the functions behind the pointers.
// Any thread.

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

// One row. `name` is the JSON key as the protocol spells it; the member is called
// m_ and that name. `member` returns the address of the member in a record. Of the
// other values only those of the field's kind are set.
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
// partial update; absent and faulty fields stay empty and the decode succeeds.
enum class Presence : std::uint8_t { Required, Optional };

// `decoder` is the name under which range faults are reported; null for a record
// without ranges.
struct RecordTable {
  const char* decoder;
  const Field* fields;
  std::size_t count;
  Presence presence;
};

// One alternative of a union. `tag` is its place in the table. An alternative
// without fields has no record and no storage.
struct Alternative {
  std::uint32_t tag;
  Vask::FoldedKey name;
  const RecordTable* record = nullptr;
  void* (*member)(void* choice) = nullptr;
  void (*construct)(void* member) = nullptr;
  void (*destroy)(void* member) = nullptr;
};

// `path` names the union from its outermost record on ("SNMPtrap::trapType");
// `key` is the last part of it, the JSON key. `tag` returns the address of the tag.
struct UnionTable {
  const char* path;
  const char* key;
  const Alternative* alternatives;
  std::uint32_t count;
  std::uint32_t* (*tag)(void* choice);
};

// The operations on a list whose element type the codec does not know. `insert`
// takes over the element if it returns true.
struct ListOperations {
  void* (*create)();
  void (*destroy)(void* element);
  bool (*insert)(void* list, const char* key, void* element);
};

// A list field: its elements by the JSON member name of each, folded to lower case.
// The list owns its elements and belongs to the thread of its record.
//
// A record's members are destroyed in reverse order. If a record holds a union and
// a list, declare the union first, so that the list is destroyed before it.
template <class E>
class KeyedList : public Vask::StrDict3<E*> {
 public:
  using Element = E;

  KeyedList() = default;
  ~KeyedList() override {
    E* element = nullptr;
    while (this->TakeFirst(element)) delete element;
  }
};

// Specialised for every record (kRows; kDecoder if a row has a range; kPresence if
// it is not Required) and for every union (kPath, kAlternatives).
template <class T>
struct Description;

// --- Names ---

// Without regard to the case of ASCII letters, like every look-up.
constexpr bool SameName(std::string_view a, std::string_view b) {
  return Vask::EqualsIgnoringCase(a, b);
}
constexpr bool SameName(const Vask::FoldedKey& a, const Vask::FoldedKey& b) {
  return SameName(std::string_view(a.Text()), std::string_view(b.Text()));
}

// Rows is a sequence of anything that has a `name`.
template <class Rows>
constexpr bool HasDuplicateNames(const Rows& rows) {
  for (auto a = std::begin(rows); a != std::end(rows); ++a) {
    for (auto b = std::next(a); b != std::end(rows); ++b) {
      if (SameName(a->name, b->name)) return true;
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

// --- Tables from descriptions ---

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
constexpr const char* DecoderOf() {
  if constexpr (requires { Description<R>::kDecoder; }) {
    return Description<R>::kDecoder;
  } else {
    return nullptr;
  }
}

template <class R>
constexpr Presence PresenceOf() {
  if constexpr (requires { Description<R>::kPresence; }) {
    return Description<R>::kPresence;
  } else {
    return Presence::Required;
  }
}

template <class Rows>
constexpr bool HasRanges(const Rows& rows) {
  for (const Field& field : rows) {
    if (field.range.hasLower || field.range.hasUpper) return true;
  }
  return false;
}

template <class R>
constexpr RecordTable MakeRecordTable() {
  if constexpr (requires { Description<R>::kRows; }) {
    constexpr auto& rows = Description<R>::kRows;
    static_assert(!HasDuplicateNames(rows), "two fields of one name");
    static_assert(HasRanges(rows) == (DecoderOf<R>() != nullptr),
                  "range faults, and nothing else, are reported under the decoder's name");
    return {DecoderOf<R>(), rows, std::size(rows), PresenceOf<R>()};
  } else {  // a record that holds nothing
    return {nullptr, nullptr, 0, Presence::Required};
  }
}

template <class R>
inline constexpr RecordTable kRecordTable = MakeRecordTable<R>();

template <class Alternatives>
constexpr bool AreInOrderOfTags(const Alternatives& alternatives) {
  std::uint32_t place = 0;
  for (const Alternative& alternative : alternatives) {
    if (alternative.tag != place++) return false;
  }
  return true;
}

template <class U>
constexpr UnionTable MakeUnionTable() {
  constexpr auto& alternatives = Description<U>::kAlternatives;
  static_assert(!HasDuplicateNames(alternatives), "two alternatives of one name");
  static_assert(AreInOrderOfTags(alternatives), "an alternative is at the place of its tag");
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

// --- The rows ---

// char m_x[N + 1]: at most N bytes.
template <auto Member>
constexpr Field Text(const char* name) {
  using Array = MemberType<Member>;
  static_assert(std::is_same_v<std::remove_extent_t<Array>, char> && std::extent_v<Array> > 1);
  return {.name = name,
          .kind = FieldKind::Text,
          .member = &AddressOf<Member>,
          .capacity = sizeof(Array) - 1};
}

template <auto Member>
constexpr Field Integer(const char* name, Range range = kAnyInteger) {
  static_assert(std::is_same_v<MemberType<Member>, std::int32_t>);
  return {.name = name, .kind = FieldKind::Integer, .member = &AddressOf<Member>, .range = range};
}

template <auto Member>
constexpr Field Real(const char* name) {
  static_assert(std::is_same_v<MemberType<Member>, double>);
  return {.name = name, .kind = FieldKind::Real, .member = &AddressOf<Member>};
}

// A record inside the record.
template <auto Member>
constexpr Field SubRecord(const char* name) {
  return {.name = name,
          .kind = FieldKind::Record,
          .member = &AddressOf<Member>,
          .record = &kRecordTable<MemberType<Member>>};
}

template <auto Member>
constexpr Field List(const char* name) {
  using L = MemberType<Member>;
  return {.name = name,
          .kind = FieldKind::List,
          .member = &AddressOf<Member>,
          .record = &kRecordTable<typename L::Element>,
          .list = &kListOperations<L>};
}

// The row takes its JSON key from the union's path.
template <auto Member>
constexpr Field Union() {
  constexpr const UnionTable& table = kUnionTable<MemberType<Member>>;
  return {
      .name = table.key, .kind = FieldKind::Union, .member = &AddressOf<Member>, .choice = &table};
}

// An alternative that carries a record, which lies in the union's storage.
template <std::uint32_t Tag, auto Member>
constexpr Alternative Carrying(const char* name) {
  using R = MemberType<Member>;
  return {.tag = Tag,
          .name = name,
          .record = &kRecordTable<R>,
          .member = &AddressOf<Member>,
          .construct = [](void* member) { ::new (member) R(); },
          .destroy = [](void* member) { static_cast<R*>(member)->~R(); }};
}

// The two rows of a union: tag, member and JSON name come from one word, so that
// they cannot be of different alternatives.
#define MESSAGES_ALTERNATIVE(U, word) ::Messages::Carrying<U::k##word, &U::m_##word>(#word)
#define MESSAGES_EMPTY_ALTERNATIVE(U, word) \
  ::Messages::Alternative {                 \
    .tag = U::k##word, .name = #word        \
  }

}  // namespace Messages
