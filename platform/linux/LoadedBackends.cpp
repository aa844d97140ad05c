#include "platform/linux/LoadedBackends.h"

#include "platform/linux/Module.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <utility>

namespace varno {
namespace {

using namespace Qt::StringLiterals;

/// Where it is installed beside the program, or built beside it.
std::filesystem::path placeOf(const char* module)
{
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error)
        return {};
    const std::filesystem::path folder = program.parent_path();
    const std::filesystem::path installed = folder / VARNO_INSTALLED_MODULES / module;
    const bool isInstalled = std::filesystem::exists(installed, error);
    return isInstalled ? installed : folder / VARNO_BUILT_MODULES / module;
}

int openModule(const char* name)
{
    return ::open(placeOf(name).c_str(), O_PATH | O_CLOEXEC);
}

} // namespace

ModuleFile::ModuleFile(const char* name)
    : m_name(name)
    , m_file(openModule(name))
{
}

ModuleFile::~ModuleFile()
{
    if (m_file >= 0)
        ::close(m_file);
}

void* ModuleFile::load()
{
    if (m_file < 0)
        m_file = openModule(m_name);
    return m_file < 0 ? nullptr
                      : dlopen(("/proc/self/fd/" + std::to_string(m_file)).c_str(), RTLD_NOW);
}

void* ModuleFile::function(const char* name)
{
    void* const loaded = load();
    void* const found = loaded ? dlsym(loaded, name) : nullptr;
    if (!found) {
        const char* const reason = dlerror();
        std::fprintf(stderr, "Varno cannot load %s: %s\n", m_name, reason ? reason : "not found");
    }
    return found;
}

std::optional<Failure> LoadedHttpSession::perform(const HttpRequest& request,
                                                  HttpReceiver& receiver, std::stop_token stop)
{
    HttpSession* const session = m_backend.get();
    if (!session)
        return Failure{tr("Varno is not installed completely: varno-http.so cannot be loaded.")};
    return session->perform(request, receiver, std::move(stop));
}

void LoadedHttpSession::connectAhead(const QByteArray& url, std::chrono::milliseconds lifetime,
                                     const std::stop_token& stop)
{
    if (HttpSession* const session = m_backend.get())
        session->connectAhead(url, lifetime, stop);
}

void LoadedKeyStore::replace(const KeyName& name, const QByteArray& secret, std::stop_token stop)
{
    if (KeyStore* const store = m_backend.get())
        store->replace(name, secret, std::move(stop));
}

void LoadedKeyStore::remove(const KeyName& name, std::stop_token stop)
{
    if (KeyStore* const store = m_backend.get())
        store->remove(name, std::move(stop));
}

std::optional<QByteArray> LoadedKeyStore::find(const KeyName& name, std::stop_token stop) const
{
    const KeyStore* const store = m_backend.get();
    return store ? store->find(name, std::move(stop)) : std::nullopt;
}

KeyGlance LoadedKeyStore::look(const KeyName& name, std::stop_token stop) const
{
    const KeyStore* const store = m_backend.get();
    return store ? store->look(name, std::move(stop)) : KeyGlance();
}

} // namespace varno
