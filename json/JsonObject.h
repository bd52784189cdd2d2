#pragma once

#include "json/Json.h"
#include "json/StrDict3.h"

namespace Vask {

// An object: members by name. Unless made case sensitive it folds names to
// lower case, as every object of this system does: a member set as `StreamsOK`
// is found under any spelling and written as `streamsok`, and members are
// written in ascending order of their folded names, not as they were set.
class JsonObject final : public Json {
 public:
  using Dictionary = StrDict3<Json*>;

  explicit JsonObject(bool caseSensitive = false) : JsonObject(caseSensitive, nullptr, 0) {}

  // One that has the memory of its first nodes with it, in one allocation; for
  // objects that will not stay empty. Folds names. It lies in `memory`, or in
  // the heap.
  [[nodiscard]] static JsonObject* CreateWithRoom(ValueMemory* memory = nullptr);

  // Stores `value` under the key, in place of any earlier value, which is
  // released. The object takes a reference of its own; the caller keeps his and
  // releases it when done. False, with nothing changed, for a null value.
  //
  // An empty key stores nothing, yet the answer is true and the reference is
  // taken; nobody ever releases it.
  bool Set(const char* key, Json* value);

  // The member's value, or null; its count is unchanged, so it lives as long as
  // it is a member here.
  [[nodiscard]] Json* Find(const FoldedKey& key) const noexcept {
    Json* const* value = m_members.FindValue(key);
    return value != nullptr ? *value : nullptr;
  }

  [[nodiscard]] bool Empty() const noexcept { return m_members.Empty(); }

  // The members themselves, for walking with ForEach. Whoever inserts here must
  // see to the references.
  Dictionary& Members() noexcept {
    BreakText();
    return m_members;
  }
  const Dictionary& Members() const noexcept { return m_members; }

  // The same for whoever fills the object while its text is being read.
  Dictionary& NewMembers() noexcept { return m_members; }
  // Whether nodes had to be got beside the room that the object came with.
  [[nodiscard]] bool HasHeapNodes() const noexcept { return m_nodes.Blocks() != 0; }

  // Like Set at the node of a key that was laid with Dictionary::Path, but takes
  // over the caller's reference. A null node stands for the empty key.
  static void Adopt(Dictionary::Node* node, Json* value) noexcept {
    if (node == nullptr) return;
    if (node->hasValue) node->value->Release();
    node->value = value;
    node->hasValue = 1;
  }

  [[nodiscard]] JsonType Type() const noexcept override { return JsonType::Object; }
  void Write(std::string& out) const override;
  void WritePretty(std::string& out, std::uint32_t indentLevel) const override;

 protected:
  ~JsonObject() override;

 private:
  // Keys for which there is room beforehand; few objects have more.
  static constexpr std::uint32_t kRoom = 8;

  JsonObject(bool caseSensitive, Dictionary::Node* firstNodes, std::uint32_t count)
      : Json(true), m_nodes(firstNodes, count), m_members(&m_nodes, caseSensitive) {}

  Json* TakeChild() noexcept override;

  Dictionary::StandardAllocator m_nodes;
  Dictionary m_members;
};

}  // namespace Vask
