#include "shield/guard.hpp"

namespace orvanth::shield {

constinit std::mutex workspaceLock;

}  // namespace orvanth::shield
