#pragma once

#include <QString>
#include <QStringList>
#include <QTextStream>

#include <cstdlib>
#include <initializer_list>
#include <iterator>
#include <memory>

// A doubly linked list. The forward chain owns the nodes and the backward links are weak, so a
// chain is freed as soon as its head is let go. It keeps neither a tail nor a count: count, last
// and append walk the chain. That is fine for the short work queues it serves (the size calculator
// and thumbnail loader) and is what the LRU cache's eviction rule is built on.
// Not thread-safe; its users guard it.
template <typename T>
class ARXLinkedList {
public:
    class LinkedListNode {
    public:
        explicit LinkedListNode(T v) : value(std::move(v)) {}
        T value;
        std::shared_ptr<LinkedListNode> next;
        std::weak_ptr<LinkedListNode> previous;
    };
    using Node = std::shared_ptr<LinkedListNode>;

    // A position while walking the list; two indexes compare by their tag alone.
    struct Index {
        Node node; // null at the end
        int tag = 0;
        bool operator==(const Index& other) const { return tag == other.tag; }
        auto operator<=>(const Index& other) const { return tag <=> other.tag; }
    };

    ARXLinkedList() = default;
    ARXLinkedList(std::initializer_list<T> values) {
        for (const T& v : values) {
            append(v);
        }
    }

    Node head;

    bool isEmpty() const { return head == nullptr; }

    int count() const {
        int n = 0;
        for (Node node = head; node; node = node->next) {
            ++n;
        }
        return n;
    }

    Node last() const {
        Node node = head;
        while (node && node->next) {
            node = node->next;
        }
        return node;
    }

    // An index past the end is a programming error and stops the process.
    Node nodeAt(int index) const {
        if (index < 0) {
            std::abort();
        }
        Node node = head;
        for (int i = 0; node && i < index; ++i) {
            node = node->next;
        }
        if (!node) {
            std::abort();
        }
        return node;
    }

    const T& operator[](int index) const { return nodeAt(index)->value; }
    T& operator[](int index) { return nodeAt(index)->value; }
    const T& operator[](const Index& index) const { return index.node->value; }

    void append(T value) { append(std::make_shared<LinkedListNode>(std::move(value))); }

    void append(Node node) {
        if (Node tail = last()) {
            node->previous = tail;
            tail->next = node;
        } else {
            head = node;
        }
    }

    // Appends copies of the other list's elements.
    void append(const ARXLinkedList& list) {
        for (Node node = list.head; node; node = node->next) {
            append(node->value);
        }
    }

    void insert(T value, int index) {
        insert(std::make_shared<LinkedListNode>(std::move(value)), index);
    }

    void insert(Node node, int index) {
        if (index == 0) {
            node->next = head;
            if (head) {
                head->previous = node;
            }
            node->previous.reset();
            head = node;
            return;
        }
        Node prev = nodeAt(index - 1);
        Node next = prev->next;
        node->previous = prev;
        node->next = next;
        if (next) {
            next->previous = node;
        }
        prev->next = node;
    }

    // Inserts copies of the other list's elements, in order, before the position.
    void insert(const ARXLinkedList& list, int index) {
        int at = index;
        for (Node node = list.head; node; node = node->next) {
            insert(node->value, at++);
        }
    }

    T remove(Node node) { // by value: node may be a reference to head itself
        Node prev = node->previous.lock();
        Node next = node->next;
        if (prev) {
            prev->next = next;
        } else {
            head = next;
        }
        if (next) {
            next->previous = prev;
        }
        node->previous.reset();
        node->next.reset();
        return node->value;
    }

    T removeAt(int index) { return remove(nodeAt(index)); }

    T removeLast() {
        Node tail = last();
        if (!tail) {
            std::abort();
        }
        return remove(tail);
    }

    void removeAll() { head.reset(); }

    void reverse() {
        Node node = head;
        while (node) {
            Node next = node->next;
            node->next = node->previous.lock();
            node->previous = next;
            head = node;
            node = next;
        }
    }

    template <typename F>
    auto map(F transform) const {
        ARXLinkedList<decltype(transform(std::declval<const T&>()))> result;
        for (Node node = head; node; node = node->next) {
            result.append(transform(node->value));
        }
        return result;
    }

    template <typename P>
    ARXLinkedList filter(P predicate) const {
        ARXLinkedList result;
        for (Node node = head; node; node = node->next) {
            if (predicate(node->value)) {
                result.append(node->value);
            }
        }
        return result;
    }

    Index startIndex() const { return Index{head, 0}; }
    Index endIndex() const { return Index{nullptr, count()}; }
    Index indexAfter(const Index& index) const { return Index{index.node->next, index.tag + 1}; }

    // Iteration as a sequence.
    class const_iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using pointer = const T*;
        using reference = const T&;
        explicit const_iterator(Node node) : _node(std::move(node)) {}
        reference operator*() const { return _node->value; }
        const_iterator& operator++() {
            _node = _node->next;
            return *this;
        }
        bool operator==(const const_iterator& other) const { return _node == other._node; }

    private:
        Node _node;
    };
    const_iterator begin() const { return const_iterator(head); }
    const_iterator end() const { return const_iterator(nullptr); }

    // "[a, b, c]", for debugging; elements must be streamable into a QTextStream.
    QString description() const {
        QString text;
        QTextStream out(&text);
        out << '[';
        for (Node node = head; node; node = node->next) {
            out << node->value;
            if (node->next) {
                out << ", ";
            }
        }
        out << ']';
        return text;
    }
};
