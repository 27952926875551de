/// Memory without the C++ runtime: what it returns is null when there is no more.
#pragma once

#include <cstdlib>
#include <new>
#include <utility>

namespace platform {

/// Makes an object on the heap; destroy() ends it. Null when there is no memory.
template <class Object, class... Arguments>
Object* create(Arguments&&... arguments) {
    void* place = std::malloc(sizeof(Object));
    return place ? new (place) Object{std::forward<Arguments>(arguments)...} : nullptr;
}

/// Accepts null.
template <class Object>
void destroy(Object* object) {
    if (object == nullptr) return;
    object->~Object();
    std::free(object);
}

}  // namespace platform
