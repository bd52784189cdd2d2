#pragma once

#include "json/Json.h"
#include "json/StrDict3.h"

namespace Vask {

// An object: members by name. Unless it is made case sensitive, it folds names to lower
// case. Every object of this system does so: a member that was set as `StreamsOK` is
// found in any letter case and written as `streamsok`. Members are written in ascending
// order of their folded names, not in the order in which they were set.
class JsonObject final : public Json {
 public:
  using Dictionary = StrDict3<Json*>;

  explicit JsonObject(bool caseSensitive = false)
      : Json(JsonType::Object), m_members(&m_nodes, caseSensitive) {}

  // An object that is filled while a text is read. It folds names. The object and the
  // nodes of its keys lie in `memory` until CloseText is called. It has room for the
  // first of these nodes.
  [[nodiscard]] static JsonObject* CreateForText(ValueMemory& memory) {
    void* object = memory.Take(sizeof(JsonObject) + kRoom * sizeof(Dictionary::Node));
    return ::new (object) JsonObject(memory);
  }
  void CloseText() noexcept { m_nodes.CloseText(); }

  // Stores `value` under the key and releases the earlier value, if there is one. The
  // object takes a reference of its own; the caller keeps and releases its own reference.
  // Returns false and changes nothing if the value is null.
  //
  // Under an empty key this stores nothing. Even then the object takes its reference,
  // which nothing ever releases, and the result is true.
  bool Set(const char* key, Json* value);

  // The member's value, or null. Its count does not change, so the result is valid as
  // long as the value is a member.
  [[nodiscard]] Json* Find(const FoldedKey& key) const noexcept {
    Json* const* value = m_members.FindValue(key);
    return value != nullptr ? *value : nullptr;
  }

  [[nodiscard]] bool Empty() const noexcept { return m_members.Empty(); }

  // The members themselves, for walking with ForEach. A caller that inserts here or
  // replaces a value must also add and release the references.
  Dictionary& Members() noexcept { return m_members; }
  const Dictionary& Members() const noexcept { return m_members; }

  // Does what Set does, at the node of a key that Dictionary::Path has made, but takes
  // over the caller's reference.
  static void Adopt(Dictionary::Node* node, Json* value) noexcept {
    if (node->hasValue) node->value->Release();
    node->value = value;
    node->hasValue = 1;
  }

  void Write(std::string& out) const override;
  void WritePretty(std::string& out, std::uint32_t indentLevel) const override;

 protected:
  ~JsonObject() override = default;

 private:
  // The number of nodes for which an object of a text has room.
  static constexpr std::size_t kRoom = 2;

  // Takes nodes from the room behind the object. After that, allocates a piece of memory
  // for each.
  class Nodes final : public Dictionary::IAllocator {
   public:
    Nodes() = default;
    Nodes(ValueMemory& memory, Dictionary::Node* room) noexcept
        : m_memory(&memory), m_next(room), m_end(room + kRoom) {}

    void CloseText() noexcept { m_memory = nullptr; }

    Dictionary::Node* AllocNode() override {
      if (m_next != m_end) return m_next++;
      return ::new (ValueMemory::Take(m_memory, sizeof(Dictionary::Node))) Dictionary::Node;
    }
    void FreeNode(Dictionary::Node* node) noexcept override {
      ValueMemory::Returns returns;
      FreeNode(node, returns);
    }
    void FreeNode(Dictionary::Node* node, ValueMemory::Returns& returns) noexcept {
      if (!IsInRoom(node)) returns.Add(node);
    }

   private:
    // No other node begins at the end of the room, because each piece of memory has a head.
    bool IsInRoom(const Dictionary::Node* node) const noexcept {
      return reinterpret_cast<std::uintptr_t>(m_end) - reinterpret_cast<std::uintptr_t>(node) <=
             kRoom * sizeof(Dictionary::Node);
    }

    ValueMemory* m_memory = nullptr;     // null: the heap
    Dictionary::Node* m_next = nullptr;  // unused room, up to the end
    Dictionary::Node* m_end = nullptr;
  };

  explicit JsonObject(ValueMemory& memory) noexcept
      : Json(JsonType::Object),
        m_nodes(memory, reinterpret_cast<Dictionary::Node*>(this + 1)),
        m_members(&m_nodes) {}

  friend class Json;
  Json* ReleaseMembers(ValueMemory::Returns& returns) noexcept {
    Json* container = nullptr;
    const auto release = [&](Json* member) noexcept {
      if (ReleaseChild(member, returns)) container = member;
      return container == nullptr;
    };
    const auto free = [&](Dictionary::Node* node) noexcept { m_nodes.FreeNode(node, returns); };
    static_cast<void>(m_members.TakeEach(release, free));
    return container;
  }

  Nodes m_nodes;
  Dictionary m_members;
};

}  // namespace Vask
