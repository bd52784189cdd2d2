#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>
#include <utility>

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
    // Above 0: this many nodes right behind this one are a chain of only
    // children below it. Then `firstChild` is not set, and of the nodes between
    // this and the chain's last only the two fields above are.
    std::uint16_t run;
    Node* nextSibling;
    Node* firstChild;
    T value;  // set only when hasValue is 1
  };

  // Nodes that lie side by side.
  struct NodeRun {
    Node* begin;
    Node* end;
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
    m_ownsAllocator = true;
  }

  // With an allocator that belongs to somebody else.
  explicit StrDict3(IAllocator* allocator, bool caseSensitive = false, bool foldToUpper = false)
      : m_allocator(allocator), m_folding(KeyFolding::For(caseSensitive, foldToUpper)) {}
  explicit StrDict3(StandardAllocator* allocator, bool caseSensitive = false,
                    bool foldToUpper = false)
      : StrDict3(static_cast<IAllocator*>(allocator), caseSensitive, foldToUpper) {
    m_standardAllocator = allocator;
  }

  // Gives every node back and deletes the allocator if it is the dictionary's
  // own (nodes of that one simply go with it). Values are not touched.
  virtual ~StrDict3() {
    if (m_ownsAllocator) {
      delete m_allocator;
    } else {
      Clear();
    }
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
  // have any length, and never allocates. For a dictionary that is about to go
  // together with its allocator: nodes are dropped, not given back, and after
  // the first call it is good for nothing but further ones and destruction.
  bool TakeFirst(T& value) noexcept;

  // Gives every node back; the values are not touched.
  void Clear() noexcept {
    while (Node* node = m_root) {
      Unfold(node);
      m_root = Successor(node);
      m_allocator->FreeNode(node);
    }
  }

  // True when no pair was ever inserted.
  bool Empty() const noexcept { return m_root == nullptr; }

 private:
  // New nodes: the caller takes as many as it needs, one at least.
  NodeRun OfferNodes() {
    if (m_standardAllocator != nullptr) return m_standardAllocator->Offer();
    Node* node = m_allocator->AllocNode();
    return {node, node + 1};
  }
  void TakeNodes(Node* end) noexcept {
    if (m_standardAllocator != nullptr) m_standardAllocator->Take(end);
  }

  // Sets the fields that a run leaves out in `node` and hands the rest of the
  // run to its child, so that something can be hung in below.
  static void Unfold(Node* node) noexcept;

  // What comes next when `first`, the first node of the first chain, is cut off:
  // its children are put before its siblings. Within a run that is the last
  // node, for the others hold no value. This takes a dictionary apart in
  // the order of ForEach without a stack.
  static Node* Successor(Node* first) noexcept;

  static bool Visit(char* key, std::size_t length, Node* node, Callback callback, void* context);

  IAllocator* m_allocator;
  // The same allocator when it is the standard one, whose calls the compiler
  // can then see through: nodes are got by the dozen for each key.
  StandardAllocator* m_standardAllocator = nullptr;
  const KeyFolding& m_folding;
  Node* m_root = nullptr;
  bool m_ownsAllocator = false;
};

template <class T>
template <std::uint32_t NodesPerBlock>
class StrDict3<T>::Allocator final : public IAllocator {
 public:
  // The memory of a block, for who has room for the first one elsewhere.
  using Nodes = std::array<Node, NodesPerBlock>;

  // With `firstNodes`, which must outlive the allocator, the first block is
  // that; all others come from the heap.
  explicit Allocator(Nodes* firstNodes = nullptr) noexcept : m_firstNodes(firstNodes) {}
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
    Node* node = Offer().begin;
    Take(node + 1);
    return node;
  }

  // As many nodes as happen to lie side by side, one at least. They are free
  // until they are taken; before that only `hasValue` and `ch` may be set.
  NodeRun Offer() {
    if (m_next.begin == m_next.end) FindNext();
    return m_next;
  }
  // Takes the first of the nodes that were offered last, up to `end`.
  void Take(Node* end) noexcept { m_next.begin = end; }

  void FreeNode(Node* node) noexcept override {
    if (m_next.end - m_next.begin == 1) {
      PushFree(m_next.begin);
    } else if (m_next.begin != m_next.end) {
      m_fresh = m_next;
    }
    m_next = {node, node + 1};
  }

  std::uint32_t Blocks() const noexcept { return m_blockCount; }
  std::uint32_t NodesProvided() const noexcept { return m_blockCount * NodesPerBlock; }
  std::uint32_t NodesInUse() const noexcept {
    const auto side = (m_next.end - m_next.begin) + (m_fresh.end - m_fresh.begin);
    return NodesProvided() - static_cast<std::uint32_t>(side) - m_freeCount;
  }

 private:
  struct Block {
    Nodes nodes;
    Block* next;
  };

  void PushFree(Node* node) noexcept {
    node->nextSibling = m_freeNodes;
    m_freeNodes = node;
    ++m_freeCount;
  }

  // The node that was freed last, else those never handed out, else a new block.
  void FindNext() {
    if (Node* node = m_freeNodes) {
      m_freeNodes = node->nextSibling;
      --m_freeCount;
      m_next = {node, node + 1};
    } else if (m_fresh.begin != m_fresh.end) {
      m_next = std::exchange(m_fresh, {nullptr, nullptr});
    } else {
      AddBlock();
    }
  }

  void AddBlock() {
    Nodes* nodes = m_blockCount == 0 && m_firstNodes != nullptr ? m_firstNodes : AddHeapBlock();
    m_next = {nodes->data(), nodes->data() + NodesPerBlock};
    ++m_blockCount;
  }

  Nodes* AddHeapBlock() {
    Block* block = new Block;  // left unset: whoever takes a node sets its fields
    block->next = m_blocks;
    m_blocks = block;
    return &block->nodes;
  }

  NodeRun m_next{nullptr, nullptr};   // to be handed out next
  NodeRun m_fresh{nullptr, nullptr};  // never handed out, while freed nodes go before them
  Node* m_freeNodes = nullptr;        // freed before the one in m_next
  Nodes* m_firstNodes;
  Block* m_blocks = nullptr;  // those from the heap
  std::uint32_t m_blockCount = 0;
  std::uint32_t m_freeCount = 0;
};

// Lays a key's path piece by piece, so that a key that is still being read needs
// no string of its own. Lives no longer than the dictionary.
template <class T>
class StrDict3<T>::Path {
 public:
  explicit Path(StrDict3& dictionary) noexcept
      : m_dictionary(dictionary), m_level(&dictionary.m_root) {}

  // Goes deeper along the characters up to the first that `folding` turns into
  // zero, and answers its place. There are new nodes where there were none. The
  // folding is the dictionary's own, but may know more ends. Characters past
  // kMaxKeyLength are passed over.
  const char* Append(const char* characters, const KeyFolding& folding);

  // The same for a whole key, and for one character that is not NUL.
  void Append(const char* key) { Append(key, m_dictionary.m_folding); }
  void Append(char character) {
    const char characters[] = {character, '\0'};
    Append(characters);
  }

  // The node of the last character; null for an empty key.
  Node* End() const noexcept { return m_node; }

 private:
  const char* Extend(Node** link, const char* at, const KeyFolding& folding);
  static const char* SkipRest(const char* at, const KeyFolding& folding);

  StrDict3& m_dictionary;
  Node** m_level;
  Node* m_node = nullptr;
  std::ptrdiff_t m_room = kMaxKeyLength;  // characters that may still be laid
};

template <class T>
inline const char* StrDict3<T>::Path::Append(const char* at, const KeyFolding& folding) {
  while (const signed char ch = folding.Fold(*at)) {
    Node** link = m_level;
    while (*link != nullptr && (*link)->ch < ch) link = &(*link)->nextSibling;
    if (*link == nullptr || (*link)->ch != ch) return Extend(link, at, folding);
    if (m_room == 0) return SkipRest(at, folding);
    --m_room;
    m_node = *link;
    Unfold(m_node);
    m_level = &m_node->firstChild;
    ++at;
  }
  return at;
}

// Hangs a chain of new nodes in at `link`, for the characters from `at` on.
template <class T>
inline const char* StrDict3<T>::Path::Extend(Node** link, const char* at,
                                             const KeyFolding& folding) {
  signed char ch = folding.Fold(*at);
  for (Node* nextSibling = *link; m_room != 0; nextSibling = nullptr) {
    NodeRun nodes = m_dictionary.OfferNodes();
    if (nodes.end - nodes.begin > m_room) nodes.end = nodes.begin + m_room;
    Node* node = nodes.begin;
    for (Node* const last = nodes.end - 1;; ++node) {
      node->hasValue = 0;
      node->ch = ch;
      ch = folding.Fold(*++at);
      if (ch == 0 || node == last) break;
    }
    m_dictionary.TakeNodes(node + 1);
    m_node = node;
    node->run = 0;
    node->nextSibling = nullptr;
    node->firstChild = nullptr;
    nodes.begin->run = static_cast<std::uint16_t>(node - nodes.begin);
    nodes.begin->nextSibling = nextSibling;
    *link = nodes.begin;
    m_level = link = &node->firstChild;
    m_room -= node + 1 - nodes.begin;
    if (ch == 0) return at;
  }
  return SkipRest(at, folding);
}

template <class T>
const char* StrDict3<T>::Path::SkipRest(const char* at, const KeyFolding& folding) {
  while (folding.Fold(*at) != 0) ++at;
  return at;
}

template <class T>
bool StrDict3<T>::Insert(const char* key, const T& value) {
  if (key == nullptr || *key == '\0') return false;
  Path path(*this);
  path.Append(key);
  path.End()->value = value;
  path.End()->hasValue = 1;
  return true;
}

template <class T>
bool StrDict3<T>::Find(const char* key, Node*& outNode) const noexcept {
  if (key == nullptr || *key == '\0') return false;
  const char* at = key;
  signed char ch = m_folding.Fold(*at);
  Node* parent = nullptr;
  for (Node* node = m_root;; node = node->firstChild) {
    while (node != nullptr && node->ch < ch) node = node->nextSibling;
    if (node == nullptr || node->ch != ch) {
      // No path is longer than the limit, so only there can a key be cut.
      if (static_cast<std::size_t>(at - key) != kMaxKeyLength) return false;
      break;
    }
    ch = m_folding.Fold(*++at);
    for (const Node* const end = node + node->run; node != end && ch != 0;) {
      if ((++node)->ch != ch) return false;
      ch = m_folding.Fold(*++at);
    }
    parent = node;
    if (ch == 0) break;
  }
  outNode = parent;
  return true;
}

template <class T>
bool StrDict3<T>::ForEach(const char* prefix, Callback callback, void* context) const {
  struct Later {
    Node* node;
    std::size_t length;
  };
  Later later[kMaxVisitedKeyLength];  // siblings passed over on the way down
  Later* lastLater = later;
  char key[kMaxVisitedKeyLength + 1];
  std::size_t length = std::strlen(prefix);
  if (length > kMaxVisitedKeyLength) EndProcessOnLongKey();
  std::memcpy(key, prefix, length);
  for (Node* node = m_root; node != nullptr;) {
    if (length == kMaxVisitedKeyLength) EndProcessOnLongKey();
    key[length++] = static_cast<char>(node->ch);
    if (node->hasValue && !Visit(key, length, node, callback, context)) return false;
    if (node->nextSibling != nullptr) *lastLater++ = {node->nextSibling, length - 1};
    if (const Node* const end = node + node->run; node != end) {
      if (length + node->run > kMaxVisitedKeyLength) EndProcessOnLongKey();
      while (node != end) key[length++] = static_cast<char>((++node)->ch);
      if (node->hasValue && !Visit(key, length, node, callback, context)) return false;
    }
    node = node->firstChild;
    if (node == nullptr && lastLater != later) {
      node = (--lastLater)->node;
      length = lastLater->length;
    }
  }
  return true;
}

template <class T>
bool StrDict3<T>::Visit(char* key, std::size_t length, Node* node, Callback callback,
                        void* context) {
  key[length] = '\0';
  return callback(key, &node->value, context);
}

template <class T>
void StrDict3<T>::Unfold(Node* node) noexcept {
  if (node->run == 0) return;
  Node* child = node + 1;
  if (node->run > 1) {
    child->run = static_cast<std::uint16_t>(node->run - 1);
    child->nextSibling = nullptr;
  }
  node->run = 0;
  node->firstChild = child;
}

template <class T>
typename StrDict3<T>::Node* StrDict3<T>::Successor(Node* first) noexcept {
  Node* next = first->run != 0 ? first + first->run : first->firstChild;
  if (next == nullptr) return first->nextSibling;
  if (first->nextSibling != nullptr) {
    // Each chain of siblings is walked to its end once at most, so a whole
    // dictionary is taken apart in linear time.
    Node* last = next;
    while (last->nextSibling != nullptr) last = last->nextSibling;
    last->nextSibling = first->nextSibling;
  }
  return next;
}

template <class T>
bool StrDict3<T>::TakeFirst(T& value) noexcept {
  Node* node = m_root;
  while (node != nullptr && !node->hasValue) node = Successor(node);
  if (node == nullptr) {
    m_root = nullptr;
    return false;
  }
  value = node->value;
  m_root = Successor(node);
  return true;
}

}  // namespace Vask
