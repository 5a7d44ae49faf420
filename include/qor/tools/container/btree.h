// btree<K, V, P, N> and hash<K, V, P, N>: the library's keyed container.
//
// An ordered balanced search tree whose nodes hold at most N keys (N = 2, a
// 2-3 tree, everywhere in the library). Nothing is hashed: `hash` is the name
// client code uses and adds nothing. Values are pointers; with P = pif::object
// the tree owns them (a value replaced under an existing key is deleted), with
// pif::none it does not. Keys are never removed singly: entries go when the
// whole tree goes. Keys compare by K's operators; for string that is ordinal
// by code unit, with null and empty equal.
//
//   hash<string, column, pif::object, 2> cache;
//   cache.Set(u"orders", new column(...));
//   column *c = cache.Find(u"orders");
#pragma once

#include "qor/tools/container/array.h"

namespace qor::tools::container {

namespace base {

// The body of a tree: its nodes, from the root.
template <typename K, typename V, typename P, int N>
class btree : public _counter<P> {
    static_assert(N >= 2, "a node holds at least two keys");

public:
    // A key and its value.
    struct entry {
        K mKey;     // the key
        V *mValue;  // the value stored under it
    };
    // A node: up to N entries in key order and the children between them.
    struct node {
        entry *mKey[N] = {};       // the entries, mCount of them
        node *mChild[N + 1] = {};  // the subtrees (none in a leaf)
        node *mParent = nullptr;   // the node above (null at the root)
        int mCount = 0;            // entries in use
        // Whether the node has no children.
        bool IsLeaf() const noexcept { return !mChild[0]; }
    };
    // One step of a search path: odd positions 2i + 1 stand for key i, even
    // positions 2i for child i.
    struct _index {
        node *mNode;     // the node of this step
        int mPosition;   // a key (odd) or a child (even) of it
    };

    // Walks the entries in key order, keeping the path from the root
    // (deepest step last).
    class iterator {
    public:
        // At the first entry of `tree` (invalid when the tree is empty).
        explicit iterator(btree const *tree) : mTree(tree) { First(); }
        virtual ~iterator() = default;

        // Whether it stands on an entry, and that entry's key and value.
        bool IsValid() const noexcept { return mPath.Size() > 0; }
        K const &Key() const { return Current()->mKey; }
        V *Value() const { return Current()->mValue; }

        // Goes to the first entry, or on to the next (invalid past the last).
        void First() {
            mPath.Release();
            node *root = mTree->mRoot;
            if (root->mCount == 0) return;
            _Descend(root);
        }
        void Next() {
            if (!IsValid()) return;
            _index &top = *mPath.Last();
            node *n = top.mNode;
            int i = (top.mPosition - 1) / 2;
            if (n->mChild[i + 1]) {
                top.mPosition = 2 * (i + 1);
                _Descend(n->mChild[i + 1]);
                return;
            }
            if (i + 1 < n->mCount) {
                top.mPosition = 2 * (i + 1) + 1;
                return;
            }
            // Climb until a node has a key right of the child we came from.
            mPath.Remove(mPath.Size() - 1);
            while (IsValid()) {
                _index &up = *mPath.Last();
                int child = up.mPosition / 2;
                if (child < up.mNode->mCount) {
                    up.mPosition = 2 * child + 1;
                    return;
                }
                mPath.Remove(mPath.Size() - 1);
            }
        }

    private:
        entry *Current() const {
            _index const &top = *mPath.Last();
            return top.mNode->mKey[(top.mPosition - 1) / 2];
        }
        // Steps down the leftmost branch of `n`.
        void _Descend(node *n) {
            while (n->mChild[0]) {
                mPath.Add(new _index{n, 0});
                n = n->mChild[0];
            }
            mPath.Add(new _index{n, 1});
        }

        btree const *mTree;
        set<_index> mPath;
    };

    // An empty tree (a root without entries); bodies are not copied.
    btree() : mRoot(new node) {}
    btree(btree const &) = delete;
    btree &operator=(btree const &) = delete;
    ~btree() override {
        _Destroy(mRoot);
        delete mRoot;
    }

    // The entry stored under `key`, or null. Records the path in `path` when given.
    entry *Search(K const &key, set<_index> *path = nullptr) const {
        if (path) path->Size(0);
        node *n = mRoot;
        if (n->mCount == 0) return nullptr;
        for (;;) {
            int last = n->mCount - 1;
            int child = -1;
            if (key < n->mKey[0]->mKey) {
                child = 0;
            } else if (n->mKey[last]->mKey < key) {
                child = n->mCount;
            } else {
                for (int i = 0; i <= last; ++i) {
                    if (n->mKey[i]->mKey == key) {
                        if (path) path->Add(new _index{n, 2 * i + 1});
                        return n->mKey[i];
                    }
                }
                for (int i = 0; i <= last; ++i) {
                    if (key < n->mKey[i]->mKey && n->mChild[i]) {
                        child = i;
                        break;
                    }
                }
                if (child < 0) break;
            }
            if (!n->mChild[child]) break;
            n = n->mChild[child];
            if (path) path->Add(new _index{n, 2 * child});
        }
        if (path) path->Size(0);
        return nullptr;
    }

    // Stores `value` under `key`, giving back the value it replaces.
    void Set(K const &key, V *value) {
        if (entry *e = Search(key)) {
            if (e->mValue != value) P::GiveBack(e->mValue);
            e->mValue = value;
            return;
        }
        _Insert(_Leaf(key), new entry{key, value}, nullptr);
        while (mRoot->mParent) mRoot = mRoot->mParent;
    }

    node *mRoot;  // the root node, never null

private:
    node *_Leaf(K const &key) const {
        node *n = mRoot;
        while (n->mCount > 0) {
            node *next = nullptr;
            node *lastChild = n->mChild[n->mCount];
            if (lastChild && !(key < n->mKey[n->mCount - 1]->mKey)) {
                next = lastChild;
            } else {
                for (int i = 0; i < n->mCount; ++i) {
                    if (n->mChild[i] && key < n->mKey[i]->mKey) {
                        next = n->mChild[i];
                        break;
                    }
                }
            }
            if (!next) return n;
            n = next;
        }
        return n;
    }

    // Puts `e` with its right-hand subtree into `n`, splitting upward as needed.
    void _Insert(node *n, entry *e, node *right) {
        for (;;) {
            if (n->mCount < N) {
                int at = n->mCount;
                for (int i = 0; i < n->mCount; ++i) {
                    if (e->mKey < n->mKey[i]->mKey) {
                        at = i;
                        break;
                    }
                }
                for (int i = n->mCount; i > at; --i) n->mKey[i] = n->mKey[i - 1];
                for (int i = n->mCount + 1; i > at + 1; --i) n->mChild[i] = n->mChild[i - 1];
                n->mKey[at] = e;
                n->mChild[at + 1] = right;
                if (right) right->mParent = n;
                ++n->mCount;
                return;
            }
            // Split: merge into N + 1 keys and N + 2 children, keep the lower
            // part, move the upper part to a new node and the middle key up.
            entry *keys[N + 1];
            node *children[N + 2];
            int at = N;
            for (int i = 0; i < N; ++i) {
                if (e->mKey < n->mKey[i]->mKey) {
                    at = i;
                    break;
                }
            }
            for (int i = 0, k = 0; i <= N; ++i) keys[i] = i == at ? e : n->mKey[k++];
            for (int i = 0, k = 0; i <= N + 1; ++i) children[i] = i == at + 1 ? right : n->mChild[k++];
            int middle = (N + 1) / 2;
            node *upper = new node;
            upper->mParent = n->mParent;
            *n = node{};
            n->mParent = upper->mParent;
            for (int i = 0; i < middle; ++i) n->mKey[i] = keys[i];
            for (int i = 0; i <= middle; ++i) n->mChild[i] = children[i];
            n->mCount = middle;
            for (int i = middle + 1, k = 0; i <= N; ++i, ++k) upper->mKey[k] = keys[i];
            for (int i = middle + 1, k = 0; i <= N + 1; ++i, ++k) upper->mChild[k] = children[i];
            upper->mCount = N - middle;
            for (node *c : n->mChild) if (c) c->mParent = n;
            for (node *c : upper->mChild) if (c) c->mParent = upper;
            e = keys[middle];
            right = upper;
            if (!n->mParent) {
                node *root = new node;
                root->mKey[0] = e;
                root->mChild[0] = n;
                root->mChild[1] = upper;
                root->mCount = 1;
                n->mParent = upper->mParent = root;
                return;
            }
            n = n->mParent;
        }
    }

    void _Destroy(node *n) {
        for (entry *&e : n->mKey) {
            if (!e) continue;
            P::GiveBack(e->mValue);
            delete e;
            e = nullptr;
        }
        for (node *&c : n->mChild) {
            if (!c) continue;
            _Destroy(c);
            delete c;
            c = nullptr;
        }
        n->mParent = nullptr;
        n->mCount = 0;
    }
};

}  // namespace base

// The tree handle: all handles on one body see the same entries.
template <typename K, typename V, typename P = pif::none, int N = 2>
class btree : public base::_base<base::btree<K, V, P, N>> {
    using body = base::btree<K, V, P, N>;

public:
    // The body's node and search-path step.
    using node = typename body::node;
    using _index = typename body::_index;

    // Walks the entries in key order; the body's iterator, on a handle that
    // keeps the tree alive while it walks.
    class iterator : public body::iterator {
    public:
        // At the first entry of `tree`.
        explicit iterator(btree const &tree) : body::iterator(tree.Body()), mTree(tree) {}

    private:
        btree mTree;
    };

    // An empty tree; copies share the entries.
    btree() = default;
    btree(btree const &other) noexcept : base::_base<body>(other) {}
    btree &operator=(btree const &other) noexcept {
        base::_base<body>::operator=(other);
        return *this;
    }

    // Stores `value` under `key`; an existing key keeps its entry.
    void Set(K const &key, V *value) { this->mBody->Set(key, value); }
    // The value stored under `key`, or null.
    V *Find(K const &key) const {
        auto *e = this->mBody->Search(key);
        return e ? e->mValue : nullptr;
    }
    // The root node, and an iterator at the first entry.
    node *Root() const noexcept { return this->mBody->mRoot; }
    iterator Iterator() const { return iterator(*this); }
};

// The name client code uses for the tree: nothing is hashed.
template <typename K, typename V, typename P = pif::none, int N = 2>
class hash : public btree<K, V, P, N> {
public:
    // An empty tree.
    hash() = default;
};

}  // namespace qor::tools::container
