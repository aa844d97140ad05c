#include "platform/linux/Module.h"
#include "platform/linux/SecretServiceKeyStore.h"

varno::KeyStore* varnoMakeKeyStore()
{
    return new varno::SecretServiceKeyStore;
}
