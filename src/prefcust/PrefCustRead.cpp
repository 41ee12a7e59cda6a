#include "prefcust/PrefCustRead.h"

#include <limits>

#include "util/RuntimeError.h"

namespace morvane::prefcust {

std::int16_t FormCustomerNumber(std::int32_t custId) {
    if (custId > std::numeric_limits<std::int16_t>::max() ||
        custId < std::numeric_limits<std::int16_t>::min())
        throw RuntimeError(errnum::kOverflow, "Overflow");
    return static_cast<std::int16_t>(custId);
}

}  // namespace morvane::prefcust
