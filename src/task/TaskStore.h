#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <new>
#include <type_traits>
#include <utility>

namespace task {

/// Up to N records in an order that the user chooses. Records never move once constructed: an insertion shifts
/// one-byte slot numbers, not records, and nothing is allocated.
///
/// `m_order`, read as a ring from `m_head`, holds every slot number exactly once: the slots in use, front to back, then
/// the free ones. Not thread-safe.
template <std::size_t N, typename T>
class TaskStore
{
    static_assert(N > 0, "a store holds at least one record");
    using Slot = std::conditional_t<(N <= 256), std::uint8_t, std::uint32_t>;

    template <typename Store, typename Value>
    class Iterator
    {
    public:
        using iterator_category = std::bidirectional_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using pointer = Value*;
        using reference = Value&;

        Iterator() = default;
        Iterator(Store* store, std::size_t position) : m_store(store), m_position(position) {}
        reference operator*() const { return (*m_store)[m_position]; }
        pointer operator->() const { return &(*m_store)[m_position]; }
        Iterator& operator++()
        {
            ++m_position;
            return *this;
        }
        Iterator operator++(int)
        {
            Iterator before = *this;
            ++m_position;
            return before;
        }
        Iterator& operator--()
        {
            --m_position;
            return *this;
        }
        Iterator operator--(int)
        {
            Iterator before = *this;
            --m_position;
            return before;
        }
        bool operator==(const Iterator& other) const { return m_position == other.m_position; }
        bool operator!=(const Iterator& other) const { return m_position != other.m_position; }

    private:
        Store* m_store = nullptr;
        std::size_t m_position = 0;
    };

public:
    using value_type = T;
    using iterator = Iterator<TaskStore, T>;
    using const_iterator = Iterator<const TaskStore, const T>;

    TaskStore()
    {
        for (std::size_t i = 0; i < N; ++i)
            m_order[i] = static_cast<Slot>(i);
    }

    /// Destroys the records front to back: the order in which they would have run.
    ~TaskStore()
    {
        while (!empty())
            pop_front();
    }

    TaskStore(const TaskStore&) = delete;
    TaskStore& operator=(const TaskStore&) = delete;

    std::size_t size() const { return m_count; }
    bool empty() const { return m_count == 0; }
    bool full() const { return m_count >= N; }

    /// Position 0 is the front.
    T& operator[](std::size_t position) { return *record(m_order[ring(position)]); }
    const T& operator[](std::size_t position) const
    {
        return *const_cast<TaskStore*>(this)->record(m_order[ring(position)]);
    }
    T& front() { return (*this)[0]; }
    const T& front() const { return (*this)[0]; }

    iterator begin() { return {this, 0}; }
    iterator end() { return {this, m_count}; }
    const_iterator begin() const { return {this, 0}; }
    const_iterator end() const { return {this, m_count}; }

    /// Constructs a record before the one at `position` (at the back when `position` is size()). The store must not be
    /// full. When T's constructor throws, nothing has changed.
    template <typename... Args>
    T& emplace(std::size_t position, Args&&... args)
    {
        const Slot slot = m_order[ring(m_count)];
        T* created = ::new (static_cast<void*>(&m_slots[slot])) T(std::forward<Args>(args)...);
        for (std::size_t i = m_count; i > position; --i)
            m_order[ring(i)] = m_order[ring(i - 1)];
        m_order[ring(position)] = slot;
        ++m_count;
        return *created;
    }

    /// Destroys the front record; the store must not be empty. The record is no longer counted while its destructor
    /// runs.
    void pop_front()
    {
        T* const leaving = &front();
        m_head = ring(1);  // so the freed slot's number becomes the last of the ring, a free one
        --m_count;
        leaving->~T();
    }

private:
    std::size_t ring(std::size_t position) const { return (m_head + position) % N; }
    T* record(Slot slot) { return std::launder(reinterpret_cast<T*>(&m_slots[slot])); }

    struct alignas(T) RawRecord
    {
        unsigned char bytes[sizeof(T)];
    };

    std::array<RawRecord, N> m_slots;
    std::array<Slot, N> m_order;
    std::size_t m_head = 0;
    std::size_t m_count = 0;
};

}  // namespace task
