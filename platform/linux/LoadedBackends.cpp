#include "platform/linux/LoadedBackends.h"

#include "platform/linux/Module.h"

#include <dlfcn.h>

#include <cstdio>
#include <utility>

namespace varno {
namespace {

/// What the function of a module makes; null, and said on the console, if there is none. The system
/// looks for the module where it looks for the program's libraries.
template <typename Backend>
std::unique_ptr<Backend> makeBackend(const char* module, const char* function)
{
    void* const loaded = dlopen(module, RTLD_NOW);
    void* const make = loaded ? dlsym(loaded, function) : nullptr;
    if (!make) {
        std::fprintf(stderr, "Varno cannot load %s: %s\n", module, dlerror());
        return nullptr;
    }
    return std::unique_ptr<Backend>(reinterpret_cast<Backend* (*)()>(make)());
}

HttpSession* httpSession()
{
    static const auto session = makeBackend<HttpSession>("varno-http.so", "varnoMakeHttpSession");
    return session.get();
}

KeyStore* keyStore()
{
    static const auto store = makeBackend<KeyStore>("varno-key-ring.so", "varnoMakeKeyStore");
    return store.get();
}

} // namespace

std::optional<Failure> LoadedHttpSession::perform(const HttpRequest& request,
                                                  HttpReceiver& receiver, std::stop_token stop)
{
    HttpSession* const session = httpSession();
    if (!session)
        return Failure{
            QStringLiteral("Varno is not installed completely: varno-http.so is missing.")};
    return session->perform(request, receiver, std::move(stop));
}

void LoadedKeyStore::add(const KeyName& name, const QByteArray& secret)
{
    if (KeyStore* const store = keyStore())
        store->add(name, secret);
}

void LoadedKeyStore::remove(const KeyName& name)
{
    if (KeyStore* const store = keyStore())
        store->remove(name);
}

std::optional<QByteArray> LoadedKeyStore::find(const KeyName& name, std::stop_token stop) const
{
    const KeyStore* const store = keyStore();
    return store ? store->find(name, std::move(stop)) : std::nullopt;
}

KeyPresence LoadedKeyStore::presence(const KeyName& name) const
{
    const KeyStore* const store = keyStore();
    return store ? store->presence(name) : KeyPresence::unreachable;
}

} // namespace varno
