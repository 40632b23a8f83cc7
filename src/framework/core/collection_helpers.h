// What the collection classes share: the POSITION handle that lists and maps
// hand out for iteration, and the two customisation points of the templates,
// HashKey (maps) and CompareElements (list and map searches).
#pragma once

#include <cstring>
#include <type_traits>

#include "framework/core/cstring.h"
#include "platform/win32.h"

// An opaque place in a list or map; NULL means "no more".
struct ZqCollectionPosition__ {};
typedef ZqCollectionPosition__* POSITION;

// The position GetStartPosition hands out for a non-empty map.
#define BEFORE_START_POSITION (reinterpret_cast<POSITION>(static_cast<INT_PTR>(-1)))

// Hash of a map key. Strings (anything convertible to LPCTSTR) hash their
// characters up to the first NUL; pointers and integers their value shifted
// right by four, as the classic templates do. Specialise for other keys.
template <class ARG_KEY>
inline UINT HashKey(ARG_KEY key) {
    using Key = std::remove_cvref_t<ARG_KEY>;
    if constexpr (std::is_convertible_v<const Key&, LPCTSTR>) {
        LPCTSTR text = static_cast<LPCTSTR>(key);
        UINT hash = 0;
        for (; text != nullptr && *text != '\0'; ++text) {
            hash = (hash << 5) + hash + static_cast<unsigned char>(*text);
        }
        return hash;
    } else if constexpr (std::is_pointer_v<Key>) {
        return static_cast<UINT>(reinterpret_cast<UINT_PTR>(key) >> 4);
    } else {
        return static_cast<UINT>(static_cast<UINT_PTR>(key) >> 4);
    }
}

// Whether two elements are equal (operator== unless specialised).
template <class TYPE, class ARG_TYPE>
inline BOOL CompareElements(const TYPE* pElement1, const ARG_TYPE* pElement2) {
    return *pElement1 == *pElement2;
}
