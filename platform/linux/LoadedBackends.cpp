#include "platform/linux/LoadedBackends.h"

#include "platform/linux/Module.h"

#include <dlfcn.h>

#include <cstdio>
#include <filesystem>
#include <utility>

namespace varno {
namespace {

/// From beside the program, as it was installed or built.
void* load(const char* module)
{
    std::error_code none;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", none);
    for (const char* folder : {VARNO_INSTALLED_MODULES, VARNO_BUILT_MODULES})
        if (void* loaded = dlopen((program.parent_path() / folder / module).c_str(), RTLD_NOW))
            return loaded;
    return nullptr;
}

/// What the function of a module makes; null, and said on the console, if there is none.
template <typename Backend>
std::unique_ptr<Backend> makeBackend(const char* module, const char* function)
{
    void* const loaded = load(module);
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
