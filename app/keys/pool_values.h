/// \file pool_values.h
/// Reading a key of a pool by its row: type and range are the row's.

#pragma once

#include <optional>

#include "app/keys/pool_key.h"
#include "app/keys/refusal.h"
#include "lib/baselib/pool/parameter_pool.h"

template <class T>
VALUE_SOURCE SourceOf(const PARAMETER_POOL& pool, const POOL_KEY<T>& key) {
    return {pool.FileName(), key.row.name};
}

inline void RequireInRange(const VALUE_SOURCE& /*source*/, const STRING& /*text*/, const VALUE_RANGE& /*range*/) {}
inline void RequireInRange(const VALUE_SOURCE& source, const ARRAY<double>& list, const VALUE_RANGE& range) {
    for (const double element : list) RequireInRange(source, element, range);
}

/// The value as it stands, for those who check it themselves. @throws the pool's errors
template <class T>
T ReadUnchecked(PARAMETER_POOL& pool, std::type_identity_t<POOL_KEY<T>> key) {
    return pool.Get<T>(key.row.name);
}

/// @throws the pool's errors; ERROR_PARAMETER for a number outside the key's range
template <class T>
T Read(PARAMETER_POOL& pool, std::type_identity_t<POOL_KEY<T>> key) {
    T value = pool.Get<T>(key.row.name);
    RequireInRange(SourceOf(pool, key), value, key.row.range);
    return value;
}

/// The same of a key that may be absent. @throws as Read
template <class T>
std::optional<T> ReadIfPresent(PARAMETER_POOL& pool, std::type_identity_t<POOL_KEY<T>> key) {
    if (!pool.FindKey(key.row.name)) return std::nullopt;
    return Read<T>(pool, key);
}
