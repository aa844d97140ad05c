#pragma once

#include <QtGlobal>

// GLib has members called `signals`, which Qt makes a keyword.
#pragma push_macro("signals")
#undef signals
#include <gio/gio.h>
#include <libsecret/secret.h>
#pragma pop_macro("signals")

#include <memory>

namespace varno {

struct Release {
    void operator()(GMainContext* context) const { g_main_context_unref(context); }
    void operator()(GHashTable* table) const { g_hash_table_unref(table); }
    void operator()(GVariant* value) const { g_variant_unref(value); }
    void operator()(SecretValue* value) const { secret_value_unref(value); }
    void operator()(GList* items) const { g_list_free_full(items, g_object_unref); }
    void operator()(GSource* source) const
    {
        g_source_destroy(source);
        g_source_unref(source);
    }
    template <typename Object>
    void operator()(Object* object) const
    {
        g_object_unref(object);
    }
};

template <typename Object>
using Owned = std::unique_ptr<Object, Release>;

/// Swallows the error of a call: here failures are silent.
class IgnoredError {
public:
    IgnoredError() = default;
    ~IgnoredError() { g_clear_error(&m_error); }
    Q_DISABLE_COPY_MOVE(IgnoredError)

    operator GError**() { return &m_error; } // NOLINT(google-explicit-constructor)

private:
    GError* m_error = nullptr;
};

} // namespace varno
