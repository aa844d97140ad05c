#include "demo/ScreenScene.h"

namespace varno {

using namespace Qt::StringLiterals;

QList<ScreenScene> screenScenes()
{
    using Step = ScreenScene::Step;
    using Kind = Step::Kind;
    const Step stored{Kind::await, u"A key is stored in your Keychain. Click Show to reveal it."_s};
    const Step warned{Kind::await, u"Add your Anthropic API key in Settings to get started."_s};
    const Step key{Kind::type, u"Anthropic API key"_s, u"a-key-that-is-made-up"_s};
    const Step record{Kind::press, u"Shortcut"_s};
    const Step combine{Kind::combine};
    return {
        {.name = u"search-first-start"_s, .hasKeys = false, .steps = {warned}},
        {.name = u"search-key-missing"_s, .hasKeys = false, .hasSearches = true, .steps = {warned}},
        {.name = u"search-recent"_s, .hasSearches = true, .everyTextSize = true},
        {.name = u"search-typing"_s,
         .hasSearches = true,
         .everyTextSize = true,
         .steps = {{Kind::type, u"Search"_s, u"why the sea has tides"_s}}},
        {.name = u"search-kept-entries"_s,
         .hasSearches = true,
         .steps = {{Kind::type, u"Search"_s, u"e"_s}, {Kind::down}, {Kind::down}}},
        {.name = u"settings-no-key"_s, .hasKeys = false, .isSettings = true},
        {.name = u"settings"_s, .isSettings = true, .everyTextSize = true, .steps = {stored}},
        {.name = u"settings-end"_s, .isSettings = true, .steps = {stored, {Kind::scrollToEnd}}},
        {.name = u"settings-key-typed"_s, .isSettings = true, .steps = {stored, key}},
        {.name = u"settings-key-revealed"_s,
         .isSettings = true,
         .steps = {stored, {Kind::press, u"Show"_s}, {Kind::await, u"Hide"_s}}},
        {.name = u"settings-key-saved"_s,
         .hasKeys = false,
         .isSettings = true,
         .steps = {key, {Kind::press, u"Save Key"_s}, {Kind::await, u"Saved"_s}}},
        {.name = u"settings-theme-menu"_s,
         .isSettings = true,
         .steps = {stored, {Kind::scrollToEnd}, {Kind::press, u"Theme"_s}}},
        {.name = u"settings-recording"_s, .isSettings = true, .steps = {stored, record}},
        {.name = u"settings-taken-by-system"_s,
         .isSettings = true,
         .steps = {stored, record, combine}},
        {.name = u"settings-taken-by-menu"_s,
         .isSettings = true,
         .steps = {stored, {Kind::pretendMenu}, record, combine}},
        {.name = u"settings-not-reported"_s,
         .isSettings = true,
         .steps = {stored, {Kind::pretendOldSystem}, record, combine}},
    };
}

} // namespace varno
