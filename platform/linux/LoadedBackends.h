#pragma once

#include "platform/HttpSession.h"
#include "platform/KeyStore.h"

#include <QCoreApplication>

#include <memory>
#include <mutex>

namespace varno {

/// The file of a module. It is opened long before it is loaded: a package that is replaced or
/// removed while the program runs leaves the program its own modules.
class ModuleFile {
public:
    explicit ModuleFile(const char* name);
    ~ModuleFile();
    Q_DISABLE_COPY_MOVE(ModuleFile)

    /// Loads it; null, and said on the console, if there is no such function.
    [[nodiscard]] void* function(const char* name);

private:
    [[nodiscard]] void* load();

    const char* m_name;
    int m_file; ///< negative if it could not be opened
};

/// A backend that a module of its own makes at the first use: its libraries are many, and a start
/// need not wait for them. What could not be loaded is tried again, since it may have been for want
/// of descriptors. Any thread.
template <typename Backend>
class Loaded {
public:
    /// The names of the module's file and of its function.
    Loaded(const char* module, const char* function)
        : m_function(function)
        , m_module(module)
    {
    }

    /// Null if it cannot be loaded.
    [[nodiscard]] Backend* get() const
    {
        const std::scoped_lock lock(m_mutex);
        if (void* const make = m_backend ? nullptr : m_module.function(m_function))
            m_backend.reset(reinterpret_cast<Backend* (*)()>(make)());
        return m_backend.get();
    }

private:
    const char* m_function;
    mutable std::mutex m_mutex;
    mutable ModuleFile m_module;
    mutable std::unique_ptr<Backend> m_backend;
};

/// The backend of varno-http.so. Every request fails if the module is not there.
class LoadedHttpSession final : public HttpSession {
    Q_DECLARE_TR_FUNCTIONS(varno::LoadedHttpSession)

public:
    [[nodiscard]] std::optional<Failure> perform(const HttpRequest& request, HttpReceiver& receiver,
                                                 std::stop_token stop) override;
    void connectAhead(const QByteArray& url, std::chrono::milliseconds lifetime,
                      const std::stop_token& stop) override;

private:
    Loaded<HttpSession> m_backend{"varno-http.so", "varnoMakeHttpSession"};
};

/// The same for varno-key-ring.so. Without the module there is no store.
class LoadedKeyStore final : public KeyStore {
public:
    void replace(const KeyName& name, const QByteArray& secret, std::stop_token stop) override;
    void remove(const KeyName& name, std::stop_token stop) override;
    [[nodiscard]] std::optional<QByteArray> find(const KeyName& name,
                                                 std::stop_token stop) const override;
    [[nodiscard]] KeyGlance look(const KeyName& name, std::stop_token stop) const override;

private:
    Loaded<KeyStore> m_backend{"varno-key-ring.so", "varnoMakeKeyStore"};
};

} // namespace varno
