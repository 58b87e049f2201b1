#include "sim/SimApplication.h"

namespace valdrix::sim {

void SimApplication::setActivationPolicy(platform::ActivationPolicy policy) {
  policy_ = policy;
  switch (policy) {
    case platform::ActivationPolicy::regular:
      return trace_.add("application policy regular");
    case platform::ActivationPolicy::accessory:
      return trace_.add("application policy accessory");
    case platform::ActivationPolicy::prohibited:
      return trace_.add("application policy prohibited");
  }
}

void SimApplication::terminate() {
  isTerminated_ = true;
  trace_.add("application terminate");
}

}  // namespace valdrix::sim
