#include "shield/guard.hpp"

namespace orvanth::shield {

ORVANTH_CONSTINIT_MUTEX std::mutex workspaceLock;

}  // namespace orvanth::shield
