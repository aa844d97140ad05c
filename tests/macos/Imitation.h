#pragma once

#include <QByteArray>
#include <QHash>
#include <QStringList>

#include <Carbon/Carbon.h>
#include <Security/Security.h>

#include <atomic>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <utility>
#include <vector>

/// Small services that answer the calls which the backends for macOS make, in this process, with
/// what each was asked for in `calls`. One of each, which tests begin with `reset`.
namespace varno::imitation {

/// Values that nobody has released, but for constants.
int livingValues();
CFTypeRef number(int value);
/// As text, to compare and to show.
QString described(CFTypeRef value);

struct EventManager {
    using Parameters = std::map<EventParamName, std::vector<UInt32>>;

    QStringList calls;
    std::map<EventHotKeyRef, std::pair<std::pair<UInt32, UInt32>, EventHotKeyID>> hotKeys;
    std::set<std::pair<UInt32, UInt32>> taken; ///< refused, by key code and modifiers
    CFTypeRef symbolicHotKeys = nullptr;       ///< an array, or something else
    EventHandlerUPP handler = nullptr;
    void* user = nullptr;
    std::set<UInt32> kinds; ///< that the handler gets

    /// What the handler answers.
    [[nodiscard]] OSStatus send(UInt32 kind, const Parameters& parameters) const;
    /// As somebody at the keyboard; each is sent to nobody if it is not registered.
    void type(UInt32 keyCode, UInt32 modifiers) const;
};
EventManager& eventManager();

struct Layout {
    QHash<int, QString> characters;
    bool isUnicode = true; ///< older ones have no such data
    void change(const QHash<int, QString>& newCharacters);
};
Layout& layout();

struct Keychain {
    enum class User { refuses, silent };
    struct Item {
        QString name; ///< of service and account
        CFTypeRef data;
    };

    std::mutex mutex;
    QStringList calls;
    std::vector<Item> items;
    bool isLocked = false;
    OSStatus failure = errSecSuccess; ///< of every call
    User user = User::refuses;
    std::atomic<int> asked = 0;

    /// Lets those go on who wait for the silent user: refused.
    void answer();
    void reset();
};
Keychain& keychain();

struct Preferences {
    std::mutex mutex;
    QStringList calls;
    std::map<QString, CFTypeRef> values;  ///< as all programs see them
    std::map<QString, CFTypeRef> pending; ///< of this program; null is removed
    bool isWritable = true;

    void set(const QString& key, CFTypeRef value); ///< as another program does
    void reset();
};
Preferences& preferences();

} // namespace varno::imitation
