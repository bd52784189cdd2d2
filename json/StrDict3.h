#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string_view>
#include <type_traits>
#include <utility>

#include "json/FoldedKey.h"

namespace Vask {

// Prints the reason to standard error and ends the process. The reason is a key that,
// together with the prefix of the enumeration, is longer than the buffer in which keys
// are assembled. If a caller stores keys of a peer in a dictionary that is enumerated, it
// must limit their length first.
[[noreturn]] void EndProcessOnLongKey() noexcept;

// A dictionary from NUL-terminated byte strings to values of type T: a trie of
// characters. Siblings are in ascending order of their characters as signed bytes (0x80
// to 0xFF before ASCII). A node stands for a whole run of characters if nothing branches
// off there, because nearly every key of a message is such a run. Unless it is case
// sensitive, the dictionary folds ASCII letters when it stores a key and when it looks
// one up, and enumerates keys as folded.
//
// T is a plain value, usually a pointer, and is copied bit by bit. The dictionary never
// releases what a pointer points to. Not synchronised. The use of the stack does not grow
// with the length of a key.
template <class T>
class StrDict3 {
  static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

 public:
  // Longer keys are cut to this when they are inserted or looked up.
  static constexpr std::size_t kMaxKeyLength = 65535;
  // The greatest length of prefix and key together that ForEach can assemble.
  static constexpr std::size_t kMaxVisitedKeyLength = 128;

  struct Node {
    std::uint64_t low;  // the run's characters, as in a KeyPiece
    std::uint64_t high;
    Node* nextSibling;
    Node* firstChild;       // below the last character
    T value;                // set only when hasValue is 1
    std::uint8_t length;    // of the run: 1 to KeyPiece::kMaxLength
    std::uint8_t hasValue;  // 1 if a key ends with the last character
  };

  // The source of nodes. One allocator may serve several dictionaries of one thread. It
  // must outlive the dictionaries that do not own it.
  class IAllocator {
   public:
    virtual ~IAllocator() = default;
    // Returns a node with no field set. Throws std::bad_alloc if there is no memory.
    virtual Node* AllocNode() = 0;
    virtual void FreeNode(Node* node) noexcept = 0;
  };

  // Gets nodes from the heap in blocks of `NodesPerBlock`, and frees the blocks only in
  // its destructor.
  template <std::uint32_t NodesPerBlock>
  class Allocator;
  using StandardAllocator = Allocator<16>;

  // Receives each key in turn, a pointer to its value and the caller's context. The key's
  // text is valid only during the call. Returns false to stop the walk. The callback must
  // not insert into the dictionary.
  using Callback = bool (*)(const char* key, T* value, void* context);
  using ConstCallback = bool (*)(const char* key, T const* value, void* context);

  class Path;

  // With an allocator of its own.
  explicit StrDict3(bool caseSensitive = false, bool foldToUpper = false)
      : StrDict3(new StandardAllocator, caseSensitive, foldToUpper) {
    m_ownsAllocator = true;
  }

  // With an allocator that belongs to the caller.
  explicit StrDict3(IAllocator* allocator, bool caseSensitive = false, bool foldToUpper = false)
      : m_allocator(allocator), m_folding(KeyFolding::For(caseSensitive, foldToUpper)) {}

  // Frees every node, and deletes the allocator if the dictionary owns it. Does not
  // touch values.
  virtual ~StrDict3() {
    if (m_ownsAllocator) {
      delete m_allocator;
    } else {
      Clear();
    }
  }

  StrDict3(const StrDict3&) = delete;
  StrDict3& operator=(const StrDict3&) = delete;

  // Stores the value under the key. It replaces an earlier value and does not release
  // that one. Returns false and stores nothing if the key is null or empty. If memory
  // runs out, throws std::bad_alloc and leaves all stored pairs as they were.
  bool Insert(const char* key, const T& value);

  // Stores the node at which the path of the key ends. Returns false if there is no such
  // path, or if the key is null or empty. The node may belong only to longer keys: test
  // hasValue. It is valid until the dictionary changes.
  bool Find(const char* key, const Node*& outNode) const noexcept;

  // The value stored under the key, or null. Valid until the dictionary changes.
  const T* FindValue(const char* key) const noexcept;
  // The same for a key that was folded beforehand, and faster.
  const T* FindValue(const FoldedKey& key) const noexcept;

  // Calls back for every pair, in ascending order of the folded keys; a key comes before
  // longer keys that begin with it. Puts `prefix` before each key. Returns false if a
  // callback stopped the walk. Ends the process if prefix and key together exceed
  // kMaxVisitedKeyLength.
  bool ForEach(const char* prefix, Callback callback, void* context) {
    return Walk(prefix, callback, context);
  }
  bool ForEach(const char* prefix, ConstCallback callback, void* context) const {
    return Walk(prefix, callback, context);
  }

  // Takes pairs out of the dictionary, in the order of ForEach, until take(value) returns
  // false or none is left. Returns true if none is left. It assembles no key, so keys may
  // have any length, and never allocates. Passes each node that is no longer needed to
  // free(node). After the first call only further calls and the destruction are allowed.
  template <class Take, class Free>
  bool TakeEach(Take take, Free free) noexcept;
  // Takes the first pair in the same way and stores its value. Returns false if none is
  // left.
  bool TakeFirst(T& value) noexcept {
    const auto take = [&value](const T& taken) noexcept {
      value = taken;
      return false;
    };
    return !TakeEach(take, [this](Node* node) noexcept { m_allocator->FreeNode(node); });
  }

  // Frees every node. Does not touch the values.
  void Clear() noexcept {
    while (Node* node = m_root) {
      m_root = Successor(node);
      m_allocator->FreeNode(node);
    }
  }

  // True if no pair was ever inserted.
  bool Empty() const noexcept { return m_root == nullptr; }

 private:
  static KeyPiece Run(const Node& node) noexcept { return {node.low, node.high, node.length}; }
  // Sets the characters of a node. The node then has no value.
  static void SetRun(Node* node, const KeyPiece& piece) noexcept {
    node->low = piece.low;
    node->high = piece.high;
    node->length = static_cast<std::uint8_t>(piece.length);
    node->hasValue = 0;
  }
  // The order of siblings follows these characters.
  static signed char First(const Node& node) noexcept { return Run(node).First(); }

  static void SetValue(Node* node, const T& value) noexcept {
    node->value = value;
    node->hasValue = 1;
  }

  // Keeps the first `kept` characters in `node` and moves the rest to a new child, so
  // that a key can end or branch off there. Changes nothing if it throws std::bad_alloc.
  void Divide(Node* node, std::size_t kept);

  // Cuts off `first`, the first node of the first chain, and returns the next first node.
  // Puts the children of `first` before its siblings. So the caller visits the nodes in
  // the order of ForEach without a stack.
  static Node* Successor(Node* first) noexcept;

  template <class AnyCallback>
  bool Walk(const char* prefix, AnyCallback callback, void* context) const;

  IAllocator* m_allocator;
  const KeyFolding& m_folding;
  Node* m_root = nullptr;
  bool m_ownsAllocator = false;
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

  // Returns the node that was freed last. If there is none, returns a new one.
  Node* AllocNode() override {
    if (m_freeNodes != nullptr) {
      --m_freeCount;
      return std::exchange(m_freeNodes, m_freeNodes->nextSibling);
    }
    if (m_next == m_end) AddBlock();
    return m_next++;
  }

  void FreeNode(Node* node) noexcept override {
    node->nextSibling = m_freeNodes;
    m_freeNodes = node;
    ++m_freeCount;
  }

  std::uint32_t Blocks() const noexcept { return m_blockCount; }
  std::uint32_t NodesProvided() const noexcept { return m_provided; }
  std::uint32_t NodesInUse() const noexcept {
    return m_provided - static_cast<std::uint32_t>(m_end - m_next) - m_freeCount;
  }

 private:
  struct Block {
    std::array<Node, NodesPerBlock> nodes;
    Block* next;
  };

  [[gnu::noinline]] void AddBlock() {
    Block* block = new Block;  // left unset: the user of a node sets its fields
    block->next = m_blocks;
    m_blocks = block;
    m_next = block->nodes.data();
    m_end = m_next + NodesPerBlock;
    m_provided += NodesPerBlock;
    ++m_blockCount;
  }

  Node* m_next = nullptr;  // never used, up to the end
  Node* m_end = nullptr;
  Node* m_freeNodes = nullptr;
  std::uint32_t m_freeCount = 0;
  std::uint32_t m_provided = 0;
  std::uint32_t m_blockCount = 0;
  Block* m_blocks = nullptr;
};

// Makes the path of a key piece by piece, so that a key that is still being read needs no
// string of its own. The dictionary must outlive the path.
template <class T>
class StrDict3<T>::Path {
 public:
  explicit Path(StrDict3& dictionary) noexcept
      : m_dictionary(dictionary), m_level(&dictionary.m_root) {}

  // Follows the characters downwards, up to the first one that `reader` does not take,
  // and returns the place of that one. Makes the nodes that are missing. Skips characters
  // beyond kMaxKeyLength.
  //
  // A reader has the function Piece(at), which returns the piece of the key that begins
  // at `at`, and an empty piece at the end of the key. KeyFolding is a reader.
  template <class Reader>
  const char* Append(const char* at, const Reader& reader);

  // The same for the only piece of a key, which is shorter than kMaxLength. Returns false
  // if it needs more than one node; then the path must not be used any more.
  [[nodiscard]] bool AppendOnly(const KeyPiece& piece) {
    return piece.length == 0 || Lay(piece) == piece.length;
  }

  // The same for a whole key, and for one character that is not NUL.
  void Append(const char* key) { Append(key, m_dictionary.m_folding); }
  void Append(char character) {
    const char characters[KeyPiece::kMaxLength] = {character};  // NUL behind it
    Append(characters);
  }

  // The node of the last character; null for an empty key.
  Node* End() const noexcept { return m_node; }

 private:
  std::size_t Lay(const KeyPiece& piece);
  void Extend(Node** link, const KeyPiece& piece);

  StrDict3& m_dictionary;
  Node** m_level;
  Node* m_node = nullptr;
  std::size_t m_room = kMaxKeyLength;  // characters that may still be added
};

template <class T>
template <class Reader>
inline const char* StrDict3<T>::Path::Append(const char* at, const Reader& reader) {
  for (;;) {
    KeyPiece piece = reader.Piece(at);
    const std::size_t whole = piece.length;
    if (whole > m_room) [[unlikely]]
      piece = piece.CutTo(m_room);
    const std::size_t laid = piece.length != 0 ? Lay(piece) : whole;
    at += laid;
    if (laid == whole && whole != KeyPiece::kMaxLength) return at;
  }
}

// Follows or makes one node, and returns how many characters of the piece it took.
template <class T>
inline std::size_t StrDict3<T>::Path::Lay(const KeyPiece& piece) {
  const signed char first = piece.First();
  Node** link = m_level;
  while (*link != nullptr && First(**link) < first) link = &(*link)->nextSibling;
  std::size_t length = piece.length;
  if (*link == nullptr || First(**link) != first) {
    Extend(link, piece);
  } else {
    length = piece.CommonLength(Run(**link));
    if (length < (*link)->length) m_dictionary.Divide(*link, length);
  }
  m_node = *link;
  m_level = &m_node->firstChild;
  m_room -= length;
  return length;
}

// Inserts a new node at `link`.
template <class T>
inline void StrDict3<T>::Path::Extend(Node** link, const KeyPiece& piece) {
  Node* node = m_dictionary.m_allocator->AllocNode();
  SetRun(node, piece);
  node->nextSibling = *link;
  node->firstChild = nullptr;
  *link = node;
}

template <class T>
bool StrDict3<T>::Insert(const char* key, const T& value) {
  if (key == nullptr || *key == '\0') return false;
  Path path(*this);
  path.Append(key);
  SetValue(path.End(), value);
  return true;
}

template <class T>
bool StrDict3<T>::Find(const char* key, const Node*& outNode) const noexcept {
  static constexpr Node kPrefix{};  // stands for every place within a run
  if (key == nullptr || *key == '\0') return false;
  const char* at = key;
  const Node* parent = nullptr;
  for (const Node* node = m_root;; node = node->firstChild) {
    const KeyPiece piece = m_folding.Piece(at);
    if (piece.length == 0) break;
    const signed char first = piece.First();
    while (node != nullptr && First(*node) < first) node = node->nextSibling;
    if (node == nullptr || First(*node) != first) {
      // No path is longer than the limit, so a key can be cut only there.
      if (static_cast<std::size_t>(at - key) != kMaxKeyLength) return false;
      break;
    }
    parent = node;
    const std::size_t same = piece.CommonLength(Run(*node));
    if (same < node->length) {
      if (same != piece.length) return false;
      parent = &kPrefix;
      break;
    }
    at += same;
  }
  outNode = parent;
  return parent != nullptr;  // never null: a key that is not empty has a first piece
}

template <class T>
[[gnu::noinline]] const T* StrDict3<T>::FindValue(const char* key) const noexcept {
  const Node* node = nullptr;
  return Find(key, node) && node->hasValue ? &node->value : nullptr;
}

// Most keys end within their first node, or miss there.
template <class T>
inline const T* StrDict3<T>::FindValue(const FoldedKey& key) const noexcept {
  const KeyPiece& piece = key.First();
  if (!m_folding.IsToLower()) return FindValue(key.Text());
  const Node* node = m_root;
  while (node != nullptr && First(*node) < piece.First()) node = node->nextSibling;
  if (node == nullptr || First(*node) != piece.First()) return nullptr;
  const std::size_t same = piece.CommonLength(Run(*node));
  if (same < node->length) return nullptr;
  if (same != piece.length || same == KeyPiece::kMaxLength) return FindValue(key.Text());
  return node->hasValue ? &node->value : nullptr;
}

template <class T>
template <class AnyCallback>
bool StrDict3<T>::Walk(const char* prefix, AnyCallback callback, void* context) const {
  struct Later {
    Node* node;
    std::size_t length;
  };
  Later later[kMaxVisitedKeyLength];  // siblings passed over on the way down
  Later* lastLater = later;
  char key[kMaxVisitedKeyLength + KeyPiece::kMaxLength];  // a run is copied whole
  std::size_t length = std::strlen(prefix);
  if (length > kMaxVisitedKeyLength) EndProcessOnLongKey();
  std::memcpy(key, prefix, length);
  for (Node* node = m_root; node != nullptr;) {
    // Every node on the way down has a character, so this also limits `later`.
    if (length + node->length > kMaxVisitedKeyLength) EndProcessOnLongKey();
    if (node->nextSibling != nullptr) *lastLater++ = {node->nextSibling, length};
    Run(*node).CopyTo(key + length);
    length += node->length;
    key[length] = '\0';
    if (node->hasValue && !callback(key, &node->value, context)) return false;
    node = node->firstChild;
    if (node == nullptr && lastLater != later) {
      node = (--lastLater)->node;
      length = lastLater->length;
    }
  }
  return true;
}

template <class T>
[[gnu::noinline]] void StrDict3<T>::Divide(Node* node, std::size_t kept) {
  Node* rest = m_allocator->AllocNode();
  const KeyPiece whole = Run(*node);
  SetRun(rest, whole.Behind(kept));
  rest->nextSibling = nullptr;
  rest->firstChild = node->firstChild;
  if (node->hasValue) SetValue(rest, node->value);
  SetRun(node, whole.CutTo(kept));
  node->firstChild = rest;
}

template <class T>
inline typename StrDict3<T>::Node* StrDict3<T>::Successor(Node* first) noexcept {
  Node* next = first->firstChild;
  if (next == nullptr) return first->nextSibling;
  if (first->nextSibling != nullptr) {
    // The loop walks to the end of each chain of siblings once at most, so the time for a
    // whole dictionary is linear.
    Node* last = next;
    while (last->nextSibling != nullptr) last = last->nextSibling;
    last->nextSibling = first->nextSibling;
  }
  return next;
}

template <class T>
template <class Take, class Free>
inline bool StrDict3<T>::TakeEach(Take take, Free free) noexcept {
  Node* node = m_root;
  while (node != nullptr) {
    Node* const next = Successor(node);
    const bool hasValue = node->hasValue != 0;
    const T value = hasValue ? node->value : T{};
    free(node);
    node = next;
    if (hasValue && !take(value)) {
      m_root = node;
      return false;
    }
  }
  m_root = nullptr;
  return true;
}

}  // namespace Vask
