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
    std::vector<Vertex> vertices(table.RightCount());
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        const auto vertex = static_cast<std::int64_t>(i);
        if (!table.Read(0, vertex, &vertices[i].col) || !table.Read(1, vertex, &vertices[i].row))
            return std::nullopt;
    }
    return vertices;
}

}  // namespace tq
