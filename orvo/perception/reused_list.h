#ifndef ORVO_PERCEPTION_REUSED_LIST_H
#define ORVO_PERCEPTION_REUSED_LIST_H

#include <cstddef>
#include <vector>

namespace orvo::perception {

/// A list whose elements outlive clear(): the next message fills the same
/// objects again, so their strings keep their capacity and reading does not
/// allocate once the list has held as many elements as a message brings.
/// add() hands out an element with the values of an earlier message; the
/// caller sets every field.
template <typename T> class ReusedList {
public:
    using const_iterator = const T*;

    std::size_t size() const { return count; }
    bool empty() const { return count == 0; }
    const T& operator[](std::size_t index) const { return items[index]; }
    const_iterator begin() const { return items.data(); }
    const_iterator end() const { return items.data() + count; }

    void clear() { count = 0; }
    T& add() {
        if (count == items.size()) {
            items.emplace_back();
        }
        return items[count++];
    }
    /// Takes back the element add() handed out last.
    void drop_last() { --count; }

private:
    std::vector<T> items;
    std::size_t count = 0;
};

} // namespace orvo::perception

#endif
