#include "orbit/source/state_vector_lists.h"

STATE_VECTOR_LISTS::STATE_VECTOR_LISTS() = default;
STATE_VECTOR_LISTS::STATE_VECTOR_LISTS(STATE_VECTOR_LISTS&&) noexcept = default;
STATE_VECTOR_LISTS::~STATE_VECTOR_LISTS() = default;
