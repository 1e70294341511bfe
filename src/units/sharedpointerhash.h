#pragma once

#include <QHash>

#include <memory>

namespace Simulation {

// Scenario objects are kept in QSets by std::shared_ptr, which Qt 5 cannot hash by itself.
// Found by argument-dependent lookup for pointers to classes of this namespace.
template <typename T> inline uint qHash(const std::shared_ptr<T> &pointer, uint seed = 0) noexcept
{
    return ::qHash(pointer.get(), seed);
}

} // namespace Simulation
