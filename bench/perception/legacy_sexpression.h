#ifndef ORVO_BENCH_LEGACY_SEXPRESSION_H
#define ORVO_BENCH_LEGACY_SEXPRESSION_H

#include <cstdint>
#include <string_view>
#include <vector>

namespace legacy {

/// A parsed s-expression kept as views into the message: lists and atoms in
/// one array, linked as first child and next sibling. The array is reused
/// from message to message, so reading a perception allocates nothing once
/// it has grown to the size of the largest message.
class SExpression {
public:
    static constexpr std::int32_t none = -1;

    struct Node {
        std::string_view atom; ///< empty for a list
        std::int32_t first = none;
        std::int32_t next = none;
        bool is_list = false;
    };

    /// Parses every top-level expression of `text`, which must outlive the
    /// nodes. False when the parentheses do not balance; the nodes read so far
    /// stay usable.
    bool parse(std::string_view text);

    /// The first top-level expression, or none.
    std::int32_t root() const { return nodes.empty() ? none : 0; }
    const Node& operator[](std::int32_t index) const {
        return nodes[static_cast<std::size_t>(index)];
    }
    std::int32_t next(std::int32_t index) const { return (*this)[index].next; }

    /// The head atom of a list: "GS" for "(GS (t 0) ...)", empty otherwise.
    std::string_view head(std::int32_t list) const;
    /// The element after the head of a list, or none.
    std::int32_t first_argument(std::int32_t list) const;
    /// The first child list whose head is `name`, or none.
    std::int32_t find(std::int32_t list, std::string_view name) const;
    /// The atom after the head of the child list `name`: value("(GS (t 1.5))", "t") is "1.5".
    std::string_view value(std::int32_t list, std::string_view name) const;

private:
    std::vector<Node> nodes;
    std::vector<std::int32_t> open;       ///< lists being read, innermost last
    std::vector<std::int32_t> last_child; ///< per open list, its latest child
};

/// Parses a whole atom as a number; false (and `out` unchanged) otherwise.
bool to_float(std::string_view atom, float& out);
bool to_int(std::string_view atom, int& out);

} // namespace legacy

#endif
