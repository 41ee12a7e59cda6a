// The ways a facade member forwards to a worker: compare, always-fetch, kept-worker,
// upload and slot read, written once so that each member is wired in a few lines.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "session/mdlErrTrap.h"
#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "transport/mdlServerReply.h"

namespace morvane::facade {

// How a member posts its request: judged plainly, or behind the progress form.
enum class Routine { Plain, Progress };

struct Request {
    std::string_view path;
    std::string body;
    Routine routine = Routine::Progress;
};

// Posts the request by its routine (the progress form gets no message and no owner).
std::string Fetch(const Request& request);
// The same with the document the reply check parsed; the progress form gives none.
JudgedReply FetchJudged(const Request& request);

// When a compare result leaves the worker in its slot for the download that may follow.
enum class Keep { NonZero, OnlyOne, Never };

template <class Worker>
using Factory = std::function<std::unique_ptr<Worker>()>;

template <class Worker>
std::unique_ptr<Worker> MakeDefault() {
    return std::make_unique<Worker>();
}

// A worker reading its reply: false when the reply is not a good one.
template <class Worker>
using Reader = std::function<bool(Worker&, const std::string&)>;

namespace detail {
// The failure end of a member with a worker: the error trap, the slot emptied, 0.
template <class Worker>
std::int32_t FailureEnd(std::unique_ptr<Worker>& slot) {
    ErrTrap();
    slot.reset();
    return 0;
}

template <class Worker>
std::int32_t ErrorEnd(std::unique_ptr<Worker>& slot) {
    CaptureError(std::current_exception());
    return FailureEnd(slot);
}
}  // namespace detail

// A worker reading its judged reply, from the parsed document when there is one.
template <class Worker>
using JudgedReader = std::function<bool(Worker&, const JudgedReply&)>;

// Compare, for a worker that reads the document the reply check already parsed: post (even
// when not logged in, since the exchange itself sets the state), then read and compare; the
// result is the decision code, 0 on any failure.
template <class Worker>
std::int32_t CompareJudged(std::unique_ptr<Worker>& slot, const Request& request,
                           const JudgedReader<Worker>& read,
                           const std::function<std::int32_t(Worker&)>& compare, Keep keep,
                           const Factory<Worker>& make = MakeDefault<Worker>) {
    try {
        JudgedReply reply = FetchJudged(request);
        if (GetLoginState() != 1) return detail::FailureEnd(slot);
        slot.reset();
        slot = make();
        if (!read(*slot, reply)) return detail::FailureEnd(slot);
        // The worker holds what it read: a large reply and its tree are not kept through
        // the comparison.
        reply = JudgedReply();
        const std::int32_t result = compare(*slot);
        const bool kept = keep == Keep::NonZero   ? result != 0
                          : keep == Keep::OnlyOne ? result == 1
                                                  : false;
        if (!kept) slot.reset();
        return result;
    } catch (...) {
        return detail::ErrorEnd(slot);
    }
}

// Compare, for a worker that reads the reply's text.
template <class Worker>
std::int32_t Compare(std::unique_ptr<Worker>& slot, const Request& request,
                     const Reader<Worker>& read,
                     const std::function<std::int32_t(Worker&)>& compare, Keep keep,
                     const Factory<Worker>& make = MakeDefault<Worker>) {
    return CompareJudged<Worker>(
        slot, request,
        [&read](Worker& worker, const JudgedReply& reply) { return read(worker, reply.text); },
        compare, keep, make);
}

namespace detail {
template <class Worker>
void FetchInto(std::unique_ptr<Worker>& slot, const Request& request, const Reader<Worker>& read,
               const Factory<Worker>& make) {
    const std::string reply = Fetch(request);
    if (GetLoginState() != 1) return;
    slot = make();
    if (!read(*slot, reply)) slot.reset();
}

template <class Worker>
std::int32_t Download(std::unique_ptr<Worker>& slot, const std::function<void(Worker&)>& download) {
    if (slot) download(*slot);  // its own result is not looked at
    slot.reset();
    return 1;
}
}  // namespace detail

// Always-fetch: 0 only when the login is lost at entry (nothing is sent then) or on a
// run-time error; otherwise 1, even when nothing could be fetched.
template <class Worker>
std::int32_t AlwaysFetch(std::unique_ptr<Worker>& slot, const Request& request,
                         const Reader<Worker>& read, const std::function<void(Worker&)>& download,
                         const Factory<Worker>& make = MakeDefault<Worker>) {
    try {
        if (GetLoginState() != 1) return detail::FailureEnd(slot);
        slot.reset();
        detail::FetchInto(slot, request, read, make);
        return detail::Download(slot, download);
    } catch (...) {
        return detail::ErrorEnd(slot);
    }
}

// Kept-worker: downloads what the comparison left in the slot. With an empty slot it fetches
// only under the object usage option 1 (and never when fetch is off); else it does nothing
// and still gives 1.
enum class FetchWhenEmpty { UnderOption, Never };

template <class Worker>
std::int32_t KeptWorker(std::unique_ptr<Worker>& slot, const Request& request,
                        const Reader<Worker>& read, const std::function<void(Worker&)>& download,
                        FetchWhenEmpty fetch = FetchWhenEmpty::UnderOption,
                        const Factory<Worker>& make = MakeDefault<Worker>) {
    try {
        if (GetLoginState() != 1) return detail::FailureEnd(slot);
        if (!slot && fetch == FetchWhenEmpty::UnderOption && State().objectUsage == 1)
            detail::FetchInto(slot, request, read, make);
        return detail::Download(slot, download);
    } catch (...) {
        return detail::ErrorEnd(slot);
    }
}

// Upload: a fresh worker that never sits in a slot; 1 only when the worker gave 1.
template <class Worker>
std::int32_t Upload(const std::function<std::int32_t(Worker&)>& upload,
                    const Factory<Worker>& make = MakeDefault<Worker>) {
    try {
        std::unique_ptr<Worker> worker = make();
        return upload(*worker) == 1 ? 1 : 0;
    } catch (...) {
        CaptureError(std::current_exception());
        ErrTrap();
        return 0;
    }
}

// Slot read: no request; an empty slot or a run-time error gives the empty result, silently.
template <class Result, class Worker>
Result ReadSlot(const std::unique_ptr<Worker>& slot, const std::function<Result(Worker&)>& read,
                Result empty = Result{}) {
    try {
        if (!slot) return empty;
        return read(*slot);
    } catch (...) {
        State().err.Clear();
        return empty;
    }
}

}  // namespace morvane::facade
