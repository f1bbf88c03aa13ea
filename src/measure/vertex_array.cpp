#include "measure/vertex_array.h"

#include "platform/automation.h"
#include "platform/int32_table.h"

namespace tq {

std::optional<std::vector<Vertex>> ReadVertices(SAFEARRAY** array) {
    if (array == nullptr || !HasInt32Elements(*array)) return std::nullopt;
    const Int32Table table(**array);
    if (table.Dimensions() != 2) return std::nullopt;
    const SafeArrayLockGuard lock(*array);
    if (!lock.Locked()) return std::nullopt;
    // As many as can be read, not as the descriptor names: 2^32 vertices of no co-ordinates take no memory.
    std::vector<Vertex> vertices;
    for (std::int64_t i = 0; i < table.RightCount(); ++i) {
        Vertex vertex{};
        if (!table.Read(0, i, &vertex.col) || !table.Read(1, i, &vertex.row)) return std::nullopt;
        vertices.push_back(vertex);
    }
    return vertices;
}

}  // namespace tq
