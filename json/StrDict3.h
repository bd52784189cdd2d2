#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "json/KeyFolding.h"

namespace Vask {

// Ends the process, after saying why on standard error: a dictionary holds a
// key that, with the prefix of the enumeration, is longer than the buffer in
// which keys are assembled. Whoever lets foreign keys into a dictionary that is
// enumerated limits their length first.
[[noreturn]] void EndProcessOnLongKey() noexcept;

// A dictionary from NUL-terminated byte strings to values of type T, as a
// character trie: one node for each character of a path, siblings in ascending
// order of their characters taken as signed bytes (0x80 to 0xFF before ASCII).
// Unless it is case sensitive it folds ASCII letters on the way in and in
// look-ups, and enumerates keys as folded.
//
// T is a plain value (a pointer, as a rule), copied bit by bit; the dictionary
// never releases what a pointer points at. Not synchronised. No operation uses
// stack in proportion to a key's length.
template <class T>
class StrDict3 {
  static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

 public:
  // Longer keys are cut to this when they are inserted or looked up.
  static constexpr std::size_t kMaxKeyLength = 65535;
  // Longest prefix and key together that ForEach can assemble.
  static constexpr std::size_t kMaxVisitedKeyLength = 128;

  struct Node {
    std::uint8_t hasValue;  // 1 when a key ends here
    signed char ch;         // the folded character
    Node* nextSibling;
    Node* firstChild;
    T value;  // set only when hasValue is 1
  };

  // Where nodes come from. One allocator may serve several dictionaries of one
  // thread; it must outlive those that do not own it.
  class IAllocator {
   public:
    virtual ~IAllocator() = default;
    // A node with no field set; throws std::bad_alloc when there is none.
    virtual Node* AllocNode() = 0;
    virtual void FreeNode(Node* node) noexcept = 0;
  };

  // Gets nodes from the heap in blocks of `NodesPerBlock` and gives them back
  // to it only in its destructor.
  template <std::uint32_t NodesPerBlock>
  class Allocator;
  using StandardAllocator = Allocator<16>;

  // Receives each key in turn, a pointer to its value and the caller's context;
  // the key's text is gone afterwards. False stops the walk. It must not insert
  // into the dictionary.
  using Callback = bool (*)(const char* key, T* value, void* context);

  class Path;

  // With an allocator of its own.
  explicit StrDict3(bool caseSensitive = false, bool foldToUpper = false)
      : StrDict3(new StandardAllocator, caseSensitive, foldToUpper) {
    m_ownedAllocator = m_allocator;
  }

  // With an allocator that belongs to somebody else.
  explicit StrDict3(IAllocator* allocator, bool caseSensitive = false, bool foldToUpper = false)
      : m_allocator(allocator), m_caseSensitive(caseSensitive), m_foldToUpper(foldToUpper) {}

  // Gives every node back and deletes the allocator if it is the dictionary's
  // own. Values are not touched.
  virtual ~StrDict3() {
    Clear();
    delete m_ownedAllocator;
  }

  StrDict3(const StrDict3&) = delete;
  StrDict3& operator=(const StrDict3&) = delete;

  // Stores the value under the key, over any earlier one, which is not
  // released. False, with nothing stored, for a null or empty key. When memory
  // runs out, std::bad_alloc leaves all stored pairs as they were.
  bool Insert(const char* key, const T& value);

  // The node at which the key's path ends, or false when there is no such path
  // (or no key). The node may be a mere prefix of longer keys: test hasValue.
  bool Find(const char* key, Node*& outNode) const noexcept;

  // The value stored under the key, or null.
  T* FindValue(const char* key) const noexcept {
    Node* node = nullptr;
    return Find(key, node) && node->hasValue ? &node->value : nullptr;
  }

  // Calls back for every pair in ascending order of the folded keys, a key
  // before those that extend it, with `prefix` set before each key. False when
  // a callback stopped the walk. Ends the process when prefix and key together
  // exceed kMaxVisitedKeyLength.
  bool ForEach(const char* prefix, Callback callback, void* context) const;

  // Takes the first pair, in the order of ForEach, out of the dictionary and
  // gives its value; false when none is left. Assembles no key, so keys may
  // have any length, and never allocates. Until it answers false the
  // dictionary is good for nothing but this and destruction.
  bool TakeFirst(T& value) noexcept;

  // Gives every node back; the values are not touched.
  void Clear() noexcept {
    while (m_root != nullptr) m_allocator->FreeNode(CutFirst());
  }

  // True when no pair was ever inserted.
  bool Empty() const noexcept { return m_root == nullptr; }

 private:
  const KeyFolding& Folding() const noexcept {
    return KeyFolding::For(m_caseSensitive, m_foldToUpper);
  }

  // Unlinks the first node; its children take its place before its siblings.
  Node* CutFirst() noexcept;

  IAllocator* m_ownedAllocator = nullptr;
  IAllocator* m_allocator;
  bool m_caseSensitive;
  std::uint32_t m_foldToUpper;
  Node* m_root = nullptr;
};

template <class T>
template <std::uint32_t NodesPerBlock>
class StrDict3<T>::Allocator final : public IAllocator {
 public:
  Allocator() = default;
  ~Allocator() override {
    while (m_blocks != nullptr) {
      Block* block = m_blocks;
      m_blocks = block->next;
      delete block;
    }
  }
  Allocator(const Allocator&) = delete;
  Allocator& operator=(const Allocator&) = delete;

  Node* AllocNode() override {
    Node* node = m_freeNodes;
    if (node != nullptr) {
      m_freeNodes = node->nextSibling;
    } else {
      if (m_freshNodes == m_freshEnd) AddBlock();
      node = m_freshNodes++;
    }
    ++m_nodesInUse;
    return node;
  }

  void FreeNode(Node* node) noexcept override {
    node->nextSibling = m_freeNodes;
    m_freeNodes = node;
    --m_nodesInUse;
  }

  std::uint32_t Blocks() const noexcept { return m_blockCount; }
  std::uint32_t NodesProvided() const noexcept { return m_blockCount * NodesPerBlock; }
  std::uint32_t NodesInUse() const noexcept { return m_nodesInUse; }

 private:
  struct Block {
    Node nodes[NodesPerBlock];
    Block* next;
  };

  void AddBlock() {
    Block* block = new Block;  // left unset: whoever takes a node sets its fields
    block->next = m_blocks;
    m_blocks = block;
    ++m_blockCount;
    m_freshNodes = block->nodes;
    m_freshEnd = block->nodes + NodesPerBlock;
  }

  Node* m_freeNodes = nullptr;
  Node* m_freshNodes = nullptr;  // of the newest block: never handed out so far
  Node* m_freshEnd = nullptr;
  Block* m_blocks = nullptr;
  std::uint32_t m_blockCount = 0;
  std::uint32_t m_nodesInUse = 0;
};

// Lays a key's path character by character, so that a key that is still being
// read needs no string of its own. Lives no longer than the dictionary.
template <class T>
class StrDict3<T>::Path {
 public:
  explicit Path(StrDict3& dictionary) noexcept
      : m_dictionary(dictionary), m_folding(dictionary.Folding()), m_level(&dictionary.m_root) {}

  // Goes one character deeper, with a new node where there is none. Characters
  // past kMaxKeyLength are ignored.
  void Append(char c) {
    if (m_length == kMaxKeyLength) return;
    const signed char ch = m_folding.Fold(c);
    Node** link = m_level;
    while (*link != nullptr && (*link)->ch < ch) link = &(*link)->nextSibling;
    if (*link == nullptr || (*link)->ch != ch) *link = NewNode(ch, *link);
    m_node = *link;
    m_level = &m_node->firstChild;
    ++m_length;
  }

  // The node of the last character; null for an empty key.
  Node* End() const noexcept { return m_node; }

 private:
  Node* NewNode(signed char ch, Node* nextSibling) {
    Node* node = m_dictionary.m_allocator->AllocNode();
    node->hasValue = 0;
    node->ch = ch;
    node->nextSibling = nextSibling;
    node->firstChild = nullptr;
    node->value = T();
    return node;
  }

  StrDict3& m_dictionary;
  const KeyFolding& m_folding;
  Node** m_level;
  Node* m_node = nullptr;
  std::size_t m_length = 0;
};

template <class T>
bool StrDict3<T>::Insert(const char* key, const T& value) {
  if (key == nullptr || *key == '\0') return false;
  Path path(*this);
  for (; *key != '\0'; ++key) path.Append(*key);
  path.End()->value = value;
  path.End()->hasValue = 1;
  return true;
}

template <class T>
bool StrDict3<T>::Find(const char* key, Node*& outNode) const noexcept {
  if (key == nullptr || *key == '\0') return false;
  const KeyFolding& folding = Folding();
  const char* end = key + kMaxKeyLength;
  Node* level = m_root;
  for (Node* node = nullptr;; level = node->firstChild) {
    const signed char ch = folding.Fold(*key);
    node = level;
    while (node != nullptr && node->ch < ch) node = node->nextSibling;
    if (node == nullptr || node->ch != ch) return false;
    if (*++key == '\0' || key == end) {
      outNode = node;
      return true;
    }
  }
}

template <class T>
bool StrDict3<T>::ForEach(const char* prefix, Callback callback, void* context) const {
  char key[kMaxVisitedKeyLength + 1];
  const Node* path[kMaxVisitedKeyLength];  // the nodes of key[prefixLength ...]
  const std::size_t prefixLength = std::strlen(prefix);
  if (prefixLength > kMaxVisitedKeyLength) EndProcessOnLongKey();
  std::memcpy(key, prefix, prefixLength);
  std::size_t depth = 0;
  for (Node* node = m_root; node != nullptr;) {
    if (prefixLength + depth == kMaxVisitedKeyLength) EndProcessOnLongKey();
    key[prefixLength + depth] = static_cast<char>(node->ch);
    path[depth++] = node;
    key[prefixLength + depth] = '\0';
    if (node->hasValue && !callback(key, &node->value, context)) return false;
    node = node->firstChild;
    while (node == nullptr && depth != 0) node = path[--depth]->nextSibling;
  }
  return true;
}

template <class T>
typename StrDict3<T>::Node* StrDict3<T>::CutFirst() noexcept {
  Node* first = m_root;
  if (first->firstChild == nullptr) {
    m_root = first->nextSibling;
    return first;
  }
  // Each chain of siblings is walked to its end once, so a whole dictionary is
  // taken apart in linear time.
  Node* lastChild = first->firstChild;
  while (lastChild->nextSibling != nullptr) lastChild = lastChild->nextSibling;
  lastChild->nextSibling = first->nextSibling;
  m_root = first->firstChild;
  return first;
}

template <class T>
bool StrDict3<T>::TakeFirst(T& value) noexcept {
  while (m_root != nullptr) {
    Node* node = CutFirst();
    const bool found = node->hasValue != 0;
    if (found) value = node->value;
    m_allocator->FreeNode(node);
    if (found) return true;
  }
  return false;
}

}  // namespace Vask
