#pragma once

#include <libical/ical.h>
#include <memory>

namespace valdrix::desktop {

struct FreeIcal {
  void operator()(icalrecur_iterator* iterator) const { icalrecur_iterator_free(iterator); }
};
using IcalIterator = std::unique_ptr<icalrecur_iterator, FreeIcal>;

}  // namespace valdrix::desktop
