#include "platform/linux/LoadedBackends.h"

#include "platform/linux/Module.h"

#include <dlfcn.h>

#include <cstdio>
#include <filesystem>
#include <utility>

namespace varno {
namespace {

/// From where it is installed beside the program, or built beside it.
void* load(const char* module)
{
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error)
        return nullptr;
    const std::filesystem::path folder = program.parent_path();
    const std::filesystem::path installed = folder / VARNO_INSTALLED_MODULES / module;
    const std::filesystem::path built = folder / VARNO_BUILT_MODULES / module;
    const bool isInstalled = std::filesystem::exists(installed, error);
    return dlopen((isInstalled ? installed : built).c_str(), RTLD_NOW);
}

/// What the function of a module makes; null, and said on the console, if there is none.
template <typename Backend>
Backend* makeBackend(const char* module, const char* function)
{
    void* const loaded = load(module);
    void* const make = loaded ? dlsym(loaded, function) : nullptr;
    if (make)
        return reinterpret_cast<Backend* (*)()>(make)();
    const char* const reason = dlerror();
    std::fprintf(stderr, "Varno cannot load %s: %s\n", module, reason ? reason : "not found");
    return nullptr;
}

// Neither is ever destroyed: while the process exits there may be threads that use them.
// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables): they have no state of their own

HttpSession* httpSession()
{
    static auto* const session = makeBackend<HttpSession>("varno-http.so", "varnoMakeHttpSession");
    return session;
}

KeyStore* keyStore()
{
    static auto* const store = makeBackend<KeyStore>("varno-key-ring.so", "varnoMakeKeyStore");
    return store;
}
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

} // namespace

std::optional<Failure> LoadedHttpSession::perform(const HttpRequest& request,
                                                  HttpReceiver& receiver, std::stop_token stop)
{
    HttpSession* const session = httpSession();
    if (!session)
        return Failure{
            QStringLiteral("Varno is not installed completely: varno-http.so cannot be loaded.")};
    return session->perform(request, receiver, std::move(stop));
}

void LoadedKeyStore::replace(const KeyName& name, const QByteArray& secret)
{
    if (KeyStore* const store = keyStore())
        store->replace(name, secret);
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

KeyGlance LoadedKeyStore::look(const KeyName& name) const
{
    const KeyStore* const store = keyStore();
    return store ? store->look(name) : KeyGlance();
}

} // namespace varno
