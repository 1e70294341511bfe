#pragma once

#include "sharedpointerhash.h"

#include <QSet>

#include <memory>

namespace Simulation {

// The members of a set of base pointers that are of one derived kind.
template <typename Derived, typename Base>
QSet<std::shared_ptr<Derived>> filteredSet(const QSet<std::shared_ptr<Base>> &objects)
{
    QSet<std::shared_ptr<Derived>> result;
    for (const auto &object : objects) {
        if (auto derived = std::dynamic_pointer_cast<Derived>(object))
            result.insert(derived);
    }
    return result;
}

// A set of derived pointers as one of base pointers.
template <typename Base, typename Derived>
QSet<std::shared_ptr<Base>> widenedSet(const QSet<std::shared_ptr<Derived>> &derived)
{
    QSet<std::shared_ptr<Base>> result;
    result.reserve(derived.size());
    for (const auto &object : derived)
        result.insert(object);
    return result;
}

} // namespace Simulation
