#include "platform/linux/LoadedBackends.h"

#include "platform/linux/Module.h"

#include <dlfcn.h>

#include <cstdio>
#include <filesystem>
#include <mutex>
#include <utility>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

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

/// A backend from its first use on, as long as the process: while it exits there may be threads
/// that use it. What could not be loaded is tried again, since it may have been for want of
/// descriptors.
template <typename Backend>
class Loaded {
public:
    Loaded(const char* module, const char* function)
        : m_module(module)
        , m_function(function)
    {
    }

    Backend* get()
    {
        const std::scoped_lock lock(m_mutex);
        if (!m_backend)
            m_backend = makeBackend<Backend>(m_module, m_function);
        return m_backend;
    }

private:
    const char* m_module;
    const char* m_function;
    std::mutex m_mutex;
    Backend* m_backend = nullptr;
};

HttpSession* httpSession()
{
    // Never destroyed. NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables)
    static auto* const session = new Loaded<HttpSession>("varno-http.so", "varnoMakeHttpSession");
    return session->get();
}

KeyStore* keyStore()
{
    // Never destroyed. NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables)
    static auto* const store = new Loaded<KeyStore>("varno-key-ring.so", "varnoMakeKeyStore");
    return store->get();
}

} // namespace

std::optional<Failure> LoadedHttpSession::perform(const HttpRequest& request,
                                                  HttpReceiver& receiver, std::stop_token stop)
{
    HttpSession* const session = httpSession();
    if (!session)
        return Failure{u"Varno is not installed completely: varno-http.so cannot be loaded."_s};
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
