#include "app/ARXLRUCache.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

template <typename T>
std::vector<T> items(const ARXLinkedList<T>& list) {
    return std::vector<T>(list.begin(), list.end());
}

// Walks the chain backwards from the tail, to check that the weak links agree with the strong ones.
template <typename T>
std::vector<T> itemsBackwards(const ARXLinkedList<T>& list) {
    std::vector<T> out;
    for (auto node = list.last(); node; node = node->previous.lock()) {
        out.push_back(node->value);
    }
    return out;
}

} // namespace

TEST(ARXLinkedList, SingleElementAndEmptyEdges) {
    ARXLinkedList<int> list;
    EXPECT_TRUE(list.isEmpty());
    EXPECT_EQ(list.last(), nullptr);
    list.insert(7, 0);
    EXPECT_EQ(list.head->value, 7);
    EXPECT_EQ(list.last(), list.head);
    EXPECT_EQ(list.remove(list.head), 7);
    EXPECT_EQ(list.head, nullptr);
    EXPECT_TRUE(list.isEmpty());
}

TEST(ARXLinkedList, InsertRemoveAndReverseKeepBothDirectionsConsistent) {
    ARXLinkedList<int> list{1, 2, 4};
    list.insert(3, 2);
    list.insert(0, 0);
    list.append(5);
    EXPECT_EQ(items(list), (std::vector<int>{0, 1, 2, 3, 4, 5}));
    EXPECT_EQ(itemsBackwards(list), (std::vector<int>{5, 4, 3, 2, 1, 0}));

    EXPECT_EQ(list.removeAt(3), 3);
    EXPECT_EQ(list.removeLast(), 5);
    EXPECT_EQ(items(list), (std::vector<int>{0, 1, 2, 4}));
    EXPECT_EQ(itemsBackwards(list), (std::vector<int>{4, 2, 1, 0}));

    list.reverse();
    EXPECT_EQ(items(list), (std::vector<int>{4, 2, 1, 0}));
    EXPECT_EQ(itemsBackwards(list), (std::vector<int>{0, 1, 2, 4}));
    EXPECT_EQ(list.head->previous.lock(), nullptr);
}

TEST(ARXLinkedList, ListFormsCopyElements) {
    ARXLinkedList<int> a{1, 2};
    ARXLinkedList<int> b{8, 9};
    a.append(b);
    a.insert(b, 1);
    EXPECT_EQ(items(a), (std::vector<int>{1, 8, 9, 2, 8, 9}));
    b[0] = 100; // a holds copies, not b's nodes
    EXPECT_EQ(a[1], 8);
    EXPECT_EQ(items(b), (std::vector<int>{100, 9}));
}

TEST(ARXLinkedList, IndexesWalkAndCompareByTag) {
    ARXLinkedList<QString> list{QStringLiteral("a"), QStringLiteral("b")};
    auto i = list.startIndex();
    EXPECT_EQ(list[i], QStringLiteral("a"));
    i = list.indexAfter(i);
    EXPECT_EQ(list[i], QStringLiteral("b"));
    i = list.indexAfter(i);
    EXPECT_EQ(i, list.endIndex());
    EXPECT_EQ(i.node, nullptr);
    EXPECT_LT(list.startIndex(), list.endIndex());
    EXPECT_EQ(list.description(), QStringLiteral("[a, b]"));
    EXPECT_EQ(items(list.map([](const QString& s) { return s.size(); })),
              (std::vector<qsizetype>{1, 1}));
    EXPECT_EQ(items(list.filter([](const QString& s) { return s == u"b"; })),
              (std::vector<QString>{QStringLiteral("b")}));
}

TEST(ARXLinkedListDeathTest, IndexPastTheEndStops) {
    ARXLinkedList<int> list{1};
    EXPECT_DEATH(list.nodeAt(1), "");
}

TEST(ARXLRUCache, EvictsOnceThenGrows) {
    ARXLRUCache<QString> cache(2);
    cache.set(QStringLiteral("A"), 1);
    cache.set(QStringLiteral("B"), 2);
    cache.set(QStringLiteral("C"), 3);
    EXPECT_FALSE(cache.contains(QStringLiteral("A")));
    // The last node still names A, so D evicts nothing.
    cache.set(QStringLiteral("D"), 4);
    EXPECT_EQ(cache.get(QStringLiteral("B")), QVariant(2));
    EXPECT_EQ(cache.get(QStringLiteral("C")), QVariant(3));
    EXPECT_EQ(cache.get(QStringLiteral("D")), QVariant(4));
    EXPECT_TRUE(cache.key2node.empty());
}

TEST(ARXLRUCache, ReadsAddNodesOnlyOnHits) {
    ARXLRUCache<QString> cache(50);
    cache.set(QStringLiteral("x"), 1);
    EXPECT_EQ(cache.priority.count(), 1);
    EXPECT_FALSE(cache.get(QStringLiteral("missing")).has_value());
    EXPECT_EQ(cache.priority.count(), 1);
    EXPECT_TRUE(cache.get(QStringLiteral("x")).has_value());
    EXPECT_EQ(cache.priority.count(), 2);
    EXPECT_EQ(cache.priority.head->value, QStringLiteral("x"));
}

TEST(ARXLRUCache, RewritingAKeyReplacesItsValueAndNilRemoves) {
    ARXLRUCache<QString> cache(2);
    cache.set(QStringLiteral("k"), 1);
    cache.set(QStringLiteral("k"), 2);
    EXPECT_EQ(cache.size(), 1u);
    EXPECT_EQ(cache.get(QStringLiteral("k")), QVariant(2));
    cache.set(QStringLiteral("k"), std::nullopt);
    EXPECT_FALSE(cache.contains(QStringLiteral("k")));
}
