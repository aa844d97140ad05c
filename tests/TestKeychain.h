#pragma once

#include "platform/fake/FakeKeyStore.h"
#include "providers/KeychainService.h"

#include <deque>

namespace varno {

/// Empty, and there until the process exits.
inline KeychainService& newKeychain()
{
    struct Keychain {
        FakeKeyStore store;
        KeychainService service{store};
    };
    static std::deque<Keychain> all;
    return all.emplace_back().service;
}

} // namespace varno
