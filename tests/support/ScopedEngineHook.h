#pragma once
// Replaces one engine operation of the reference engine for the length of a scope:
//     wctest::ScopedEngineHook hook(&wcref::EngineHooks::open_job,
//                                   [](const std::string&, const std::string&) { return false; });
// The previous hook (usually none) is put back on destruction.

#include <utility>

#include "ReferenceEngine.h"

namespace wctest {

template <typename Hook>
class ScopedEngineHook {
public:
    template <typename Replacement>
    ScopedEngineHook(Hook wcref::EngineHooks::*member, Replacement&& replacement)
        : member_(member), previous_(wcref::engineHooks().*member) {
        wcref::engineHooks().*member_ = Hook(std::forward<Replacement>(replacement));
    }
    ~ScopedEngineHook() { wcref::engineHooks().*member_ = std::move(previous_); }

    ScopedEngineHook(const ScopedEngineHook&) = delete;
    ScopedEngineHook& operator=(const ScopedEngineHook&) = delete;

private:
    Hook wcref::EngineHooks::*member_;
    Hook previous_;
};

// Deduces the hook type from the member pointer.
template <typename Hook, typename Replacement>
ScopedEngineHook(Hook wcref::EngineHooks::*, Replacement&&) -> ScopedEngineHook<Hook>;

}  // namespace wctest
