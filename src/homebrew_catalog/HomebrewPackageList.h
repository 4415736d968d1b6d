#pragma once

#include <QList>
#include <iterator>
#include <memory>
#include <vector>

#include "homebrew_catalog/HomebrewPackageSummary.h"

namespace quillbay {

// An ordered selection of the rows of one catalog: the catalog's rows are shared, the list
// holds only their positions. Sorting or searching 15,000 rows then publishes a list of
// integers instead of copying every summary, and copying the list itself is free.
class HomebrewPackageList
{
public:
    using Rows = std::shared_ptr<const QList<HomebrewPackageSummary>>;
    using Positions = std::shared_ptr<const std::vector<int>>;

    class const_iterator
    {
    public:
        using iterator_category = std::random_access_iterator_tag;
        using value_type = HomebrewPackageSummary;
        using difference_type = std::ptrdiff_t;
        using pointer = const HomebrewPackageSummary*;
        using reference = const HomebrewPackageSummary&;

        const_iterator() = default;
        const_iterator(const QList<HomebrewPackageSummary>* rows, std::vector<int>::const_iterator at)
            : m_rows(rows)
            , m_at(at)
        {
        }
        reference operator*() const { return (*m_rows)[*m_at]; }
        pointer operator->() const { return &(*m_rows)[*m_at]; }
        const_iterator& operator++()
        {
            ++m_at;
            return *this;
        }
        const_iterator operator++(int)
        {
            const_iterator old = *this;
            ++m_at;
            return old;
        }
        difference_type operator-(const const_iterator& other) const { return m_at - other.m_at; }
        friend bool operator==(const const_iterator& a, const const_iterator& b) { return a.m_at == b.m_at; }

    private:
        const QList<HomebrewPackageSummary>* m_rows = nullptr;
        std::vector<int>::const_iterator m_at;
    };

    HomebrewPackageList() = default;
    HomebrewPackageList(Rows rows, std::vector<int> positions)
        : m_rows(std::move(rows))
        , m_positions(std::make_shared<const std::vector<int>>(std::move(positions)))
    {
    }

    qsizetype size() const { return m_positions ? static_cast<qsizetype>(m_positions->size()) : 0; }
    bool isEmpty() const { return size() == 0; }
    const HomebrewPackageSummary& at(qsizetype i) const { return (*m_rows)[(*m_positions)[static_cast<size_t>(i)]]; }
    const HomebrewPackageSummary& operator[](qsizetype i) const { return at(i); }
    const HomebrewPackageSummary& first() const { return at(0); }

    const_iterator begin() const
    {
        return m_positions ? const_iterator(m_rows.get(), m_positions->begin()) : const_iterator();
    }
    const_iterator end() const
    {
        return m_positions ? const_iterator(m_rows.get(), m_positions->end()) : const_iterator();
    }

    // A plain copy of the rows, for callers that need one.
    QList<HomebrewPackageSummary> toList() const
    {
        QList<HomebrewPackageSummary> out;
        out.reserve(size());
        for (const auto& row : *this)
            out.append(row);
        return out;
    }

    friend bool operator==(const HomebrewPackageList& a, const HomebrewPackageList& b)
    {
        if (a.size() != b.size())
            return false;
        for (qsizetype i = 0; i < a.size(); ++i)
            if (!(a.at(i) == b.at(i)))
                return false;
        return true;
    }

private:
    Rows m_rows;
    Positions m_positions;
};

} // namespace quillbay
