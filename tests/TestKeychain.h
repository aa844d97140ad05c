#pragma once

#include "platform/fake/FakeKeyStore.h"
#include "providers/KeychainService.h"

#include <deque>

namespace varno {

template <typename Store>
struct TestKeychain {
    Store store;
    KeychainService service{store};
};

/// Empty, and there as long as the process, which those who are asked in the background may need.
template <typename Store = FakeKeyStore>
KeychainService& newKeychain()
{
    // Never destroyed. NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables)
    static auto* const all = new std::deque<TestKeychain<Store>>;
    return all->emplace_back().service;
}

} // namespace varno
