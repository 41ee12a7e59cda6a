// Server locks on one customer and one master at a time, each kept alive by its own timer
// form, and the reading of the server's answer to a lock request.
#pragma once

#include <cstdint>
#include <string_view>

namespace morvane {

enum class LockKind : std::int32_t { Customer = 0, Master = 1 };

// Drops the customer timer (the customer it held is not unlocked), then asks for the lock at
// once and keeps renewing it; 1 when logged in and granted.
std::int32_t LockCustomerWorker(std::int32_t custId);
// Drops the customer timer and unlocks custId, whatever the timer held; 1 when logged in and
// the reply was not empty.
std::int32_t UnlockCustomerWorker(std::int32_t custId);
std::int32_t LockMasterWorker(std::int32_t mastId);
std::int32_t UnlockMasterWorker(std::int32_t mastId);

// Sets the lock state of the kind from a lock reply: granted only for a result of exactly
// "1" under LockInfo/Customer or LockInfo/Master, whichever the kind.
bool ParseLockInfo(std::string_view xml, LockKind kind);
// The process-wide state of the kind: 1 after a granted request, else 0.
std::int32_t LockState(LockKind kind);

// Ends both timer forms without telling the server, as the end of the process would.
void DropLockTimers();

}  // namespace morvane
