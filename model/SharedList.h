#pragma once

#include <QHash>
#include <QList>
#include <QSharedData>

#include <compare>
#include <iterator>

// A list with implicitly shared entries. Copying the list, or changing one entry of a copy, does
// not copy the other entries, and an entry that two lists share is not compared. Reading never
// detaches; only edit() gives write access to an entry.
template <typename T>
class SharedList {
    struct Node : QSharedData {
        explicit Node(const T& entry) : value(entry) {}
        T value;
    };
    using Nodes = QList<QSharedDataPointer<Node>>;

public:
    using value_type = T;

    class const_iterator {
    public:
        using iterator_category = std::random_access_iterator_tag;
        using value_type = T;
        using difference_type = qsizetype;
        using pointer = const T*;
        using reference = const T&;

        const_iterator() = default;
        explicit const_iterator(typename Nodes::const_iterator node) : m_node(node) {}
        reference operator*() const { return m_node->constData()->value; }
        pointer operator->() const { return &**this; }
        reference operator[](difference_type n) const { return *(*this + n); }
        const_iterator& operator++() { return *this += 1; }
        const_iterator& operator--() { return *this += -1; }
        const_iterator operator++(int) { return const_iterator(m_node++); }
        const_iterator operator--(int) { return const_iterator(m_node--); }
        const_iterator& operator+=(difference_type n)
        {
            m_node += n;
            return *this;
        }
        const_iterator& operator-=(difference_type n) { return *this += -n; }
        friend const_iterator operator+(const_iterator i, difference_type n) { return i += n; }
        friend const_iterator operator+(difference_type n, const_iterator i) { return i += n; }
        friend const_iterator operator-(const_iterator i, difference_type n) { return i -= n; }
        friend difference_type operator-(const const_iterator& a, const const_iterator& b)
        {
            return a.m_node - b.m_node;
        }
        friend bool operator==(const const_iterator& a, const const_iterator& b)
        {
            return a.m_node == b.m_node;
        }
        friend std::strong_ordering operator<=>(const const_iterator& a, const const_iterator& b)
        {
            return a - b <=> 0;
        }

    private:
        typename Nodes::const_iterator m_node;
    };

    SharedList() = default;
    SharedList(std::initializer_list<T> entries)
    {
        for (const T& entry : entries)
            append(entry);
    }

    qsizetype size() const { return m_nodes.size(); }
    bool isEmpty() const { return m_nodes.isEmpty(); }
    const T& operator[](qsizetype index) const { return m_nodes[index].constData()->value; }
    const T& first() const { return (*this)[0]; }
    const T& last() const { return (*this)[size() - 1]; }
    const_iterator begin() const { return const_iterator(m_nodes.cbegin()); }
    const_iterator end() const { return const_iterator(m_nodes.cend()); }

    T& edit(qsizetype index) { return m_nodes[index]->value; }
    // One change that edit() applies to several lists: entries that the lists share stay shared.
    class Change {
        friend class SharedList;
        struct Step {
            QSharedDataPointer<Node> before, after;
        };
        QHash<const Node*, Step> m_steps;
    };
    template <typename Apply>
    void edit(qsizetype index, Change& change, const Apply& apply)
    {
        QSharedDataPointer<Node>& node = m_nodes[index];
        auto step = change.m_steps.find(node.constData());
        if (step == change.m_steps.end()) {
            const QSharedDataPointer<Node> before = node;
            apply(node->value);
            change.m_steps.insert(before.constData(), {before, node});
        } else {
            node = step->after;
        }
    }
    void append(const T& entry) { m_nodes.append(QSharedDataPointer<Node>(new Node(entry))); }
    void append(const SharedList& other) { m_nodes.append(other.m_nodes); }
    SharedList mid(qsizetype from, qsizetype count) const
    {
        SharedList part;
        part.m_nodes = m_nodes.mid(from, count);
        return part;
    }
    void removeAt(qsizetype index) { m_nodes.removeAt(index); }
    void swapItemsAt(qsizetype a, qsizetype b) { m_nodes.swapItemsAt(a, b); }

    // Whether the two entries are the same object, not only equal.
    bool shares(qsizetype index, const SharedList& other, qsizetype otherIndex) const
    {
        return m_nodes[index].constData() == other.m_nodes[otherIndex].constData();
    }

    bool operator==(const SharedList& other) const
    {
        if (size() != other.size())
            return false;
        for (qsizetype i = 0; i < size(); ++i) {
            if (!shares(i, other, i) && !((*this)[i] == other[i]))
                return false;
        }
        return true;
    }

private:
    Nodes m_nodes;
};
