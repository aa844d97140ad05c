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

/// Empty, and there until the process exits.
template <typename Store = FakeKeyStore>
KeychainService& newKeychain()
{
    static std::deque<TestKeychain<Store>> all;
    return all.emplace_back().service;
}

} // namespace varno
