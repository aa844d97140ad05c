#pragma once

#include <libsecret/secret.h>

namespace varno {

/// A SecretService whose questions to the user end with the answer, when they are cancelled, and
/// also when the key ring or the bus goes away, where libsecret's own would wait for ever.
GType secretServiceType();

} // namespace varno
