#include "state/state_store.h"

#include <utility>

namespace tavek {

StateStore::StateStore(std::filesystem::path file) : memory_(std::move(file)) {}

}  // namespace tavek
