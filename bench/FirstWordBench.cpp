#include "bench/Benches.h"
#include "core/AppViewModel.h"
#include "demo/SlowRelay.h"
#include "demo/StandInService.h"
#include "kit/Theme.h"
#include "platform/Background.h"
#include "platform/fake/FakePreferencesStore.h"
#include "platform/linux/SecretServiceKeyStore.h"
#include "platform/posix/CurlHttpSession.h"
#include "reader/EntryView.h"
#include "reader/text/MarkdownContentView.h"
#include "tests/BothClients.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTemporaryDir>

#include <atomic>

namespace varno::bench {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds oneWay(40);
constexpr int typing = 500; // milliseconds, from the first letter to Return
constexpr int repetitions = 9;

struct Span {
    Clock::time_point begin;
    Clock::time_point end;
};

double seconds(Clock::duration time)
{
    return std::chrono::duration<double>(time).count();
}

bool isForEntry(const ReceivedRequest& request)
{
    return request.body.contains("\"stream\":true");
}

/// The way to a service.
struct Way {
    bool isLong = false;
    bool isOldTls = false;
};

/// A service with its TLS, and the way there.
struct Line {
    explicit Line(const Way& way)
        : service(std::get<0>(StandInService::start({.tls = true, .isOldTls = way.isOldTls})))
        , relay(way.isLong ? std::make_unique<SlowRelay>(service->claudeEndpoint(), oneWay)
                           : nullptr)
    {
        service->setScript({.pieceLength = 40, .pauseAfterFirstEvent = 100ms});
    }

    std::unique_ptr<StandInService> service;
    std::unique_ptr<SlowRelay> relay;
    const QByteArray url = relay ? relay->url() : service->claudeEndpoint();
    std::atomic<Clock::time_point> arrival; ///< of the latest request for an entry
    std::jthread doorkeeper{[this](const std::stop_token& stop) {
        for (qsizetype seen = 0; !stop.stop_requested(); std::this_thread::sleep_for(50us)) {
            for (const QList<ReceivedRequest> all = service->requests(); seen < all.size(); ++seen)
                arrival = isForEntry(all[seen]) ? Clock::now() : arrival.load();
        }
    }};
};

/// The controller and the screen of an entry, with a key.
class Program final : public QObject {
public:
    explicit Program(const Line& line)
        : m_session(line.service->certificateFile())
        , m_clients(m_session, line.url, {}, 60s)
    {
        setTheme(m_screen, AppTheme::cream);
        m_screen.resize(860, 620);
        m_screen.show();
        m_model.refreshHistory();
        m_page.findChild<TextSurface*>()->viewport()->installEventFilter(this);
        turnUntil([this] { return m_history.isRead(); });
        connect(&m_model, &AppViewModel::changed, this, [this] {
            if (!m_isHeard && !m_model.streamingContent().isEmpty())
                m_isHeard = Clock::now();
        });
    }

    /// Types a query, presses Return, and waits until the first word is painted.
    Span ask()
    {
        m_model.prepareSearch();
        QTest::qWait(typing);
        const auto begin = Clock::now();
        m_model.search(u"why did the empire of this name fall"_s); // an article with its contents
        m_isAsked = Clock::now();
        turnUntil([this] { return m_isPainted; });
        return {begin, Clock::now()};
    }

    /// How long the parts of it took that are the main thread's own.
    void count(const Span& span, benchmark::State& state) const
    {
        state.counters["asked"] = seconds(m_isAsked - span.begin);
        state.counters["layout"] = seconds(*m_isLaidOut - *m_isHeard);
        state.counters["paint"] = seconds(span.end - *m_isLaidOut);
    }

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (m_page.textLength() == 0)
            return false;
        if (event->type() == QEvent::Resize && !m_isLaidOut)
            m_isLaidOut = Clock::now();
        m_isPainted |= event->type() == QEvent::Paint;
        return false;
    }

private:
    template <typename Condition>
    void turnUntil(Condition condition)
    {
        for (const QDeadlineTimer deadline(10s); !condition() && !deadline.hasExpired();) {
            QCoreApplication::processEvents();
            std::this_thread::sleep_for(50us);
        }
    }

    bool m_isPainted = false;
    Clock::time_point m_isAsked;
    std::optional<Clock::time_point> m_isHeard; ///< the first piece, by whoever hears of it last
    std::optional<Clock::time_point> m_isLaidOut;
    CurlHttpSession m_session;
    BothClients m_clients;
    QTemporaryDir m_folder;
    FakePreferencesStore m_preferences;
    HistoryStore m_history{m_folder.filePath(u"history.json"_s)};
    AppViewModel m_model{{m_preferences, m_history, m_clients.claude, m_clients.gemini}};
    EntryView m_screen{m_model};
    MarkdownContentView& m_page = *m_screen.findChild<MarkdownContentView*>();
};

/// When a transfer reached a stage, in seconds since it began.
double stage(CURL* handle, CURLINFO which)
{
    curl_off_t microseconds = 0;
    curl_easy_getinfo(handle, which, &microseconds);
    return static_cast<double>(microseconds) / 1e6;
}

/// libcurl as it comes: sends `request` again, and waits for the first piece of the entry.
Span askBare(const Line& line, const ReceivedRequest& request, benchmark::State& state)
{
    HeaderList headers;
    for (const char* name : {"x-api-key", "anthropic-version", "content-type"})
        append(headers, QByteArray(name + (": " + request.header(name))).constData());
    const auto untilText = +[](char* data, size_t, size_t length, void*) -> size_t {
        return QByteArrayView(data, qsizetype(length)).contains("text_delta") ? 0 : length;
    };
    const auto begin = Clock::now();
    const std::unique_ptr<CURL, EndBy<curl_easy_cleanup>> handle(curl_easy_init());
    const auto set = [&](CURLoption option, auto value) {
        curl_easy_setopt(handle.get(), option, value);
    };
    set(CURLOPT_URL, line.url.constData());
    set(CURLOPT_CAINFO, QFile::encodeName(line.service->certificateFile()).constData());
    set(CURLOPT_HTTPHEADER, headers.get());
    set(CURLOPT_POSTFIELDSIZE, static_cast<long>(request.body.size()));
    set(CURLOPT_POSTFIELDS, request.body.constData());
    set(CURLOPT_WRITEFUNCTION, untilText);
    curl_easy_perform(handle.get());
    const auto end = Clock::now();
    const double looked = stage(handle.get(), CURLINFO_NAMELOOKUP_TIME_T);
    const double secured = stage(handle.get(), CURLINFO_APPCONNECT_TIME_T);
    state.counters["name"] = looked;
    state.counters["connected"] = secured - looked; // the line takes the time of both at once
    state.counters["first byte"] = stage(handle.get(), CURLINFO_STARTTRANSFER_TIME_T) - secured;
    return {begin, end};
}

void measure(benchmark::State& state, Way way, bool isBare)
{
    for ([[maybe_unused]] auto iteration : state) {
        Line line(way);
        Program program(line);
        Span span = program.ask();
        program.count(span, state);
        if (isBare) {
            const QList<ReceivedRequest> all = line.service->requests();
            const auto request = std::find_if(all.begin(), all.end(), isForEntry);
            if (request != all.end())
                span = askBare(line, *request, state);
        }
        const auto arrival = line.arrival.load();
        if (arrival < span.begin)
            state.SkipWithError("there was no request");
        state.SetIterationTime(seconds(span.end - span.begin));
        state.counters["request"] = seconds(arrival - span.begin);
        state.counters["reply"] = seconds(span.end - arrival);
        state.counters["round trips"] = seconds(span.end - span.begin) / seconds(2 * oneWay);
    }
}

/// From the key ring of the session, under a name of its own.
void readKey(benchmark::State& state)
{
    SecretServiceKeyStore store;
    const KeyName name = {.service = u"com.kelbrin.varno"_s, .account = u"benchmark"_s};
    store.replace(name, "made-up", {});
    for ([[maybe_unused]] auto iteration : state) {
        const auto begin = Clock::now();
        if (!store.find(name, {}))
            state.SkipWithError("there is no key ring");
        state.SetIterationTime(seconds(Clock::now() - begin));
    }
    store.remove(name, {});
}

void beginThread(benchmark::State& state)
{
    for ([[maybe_unused]] auto iteration : state) {
        std::atomic<Clock::time_point> running;
        Background background;
        const auto begin = Clock::now();
        const bool isStarted =
            background.start([&](const std::stop_token&) { running = Clock::now(); });
        background.stop();
        state.SetIterationTime(isStarted ? seconds(running.load() - begin) : 0);
    }
}

} // namespace

void addFirstWord(Table& table)
{
    for (const auto& [name, way] : std::initializer_list<std::pair<std::string, Way>>{
             {"far", {.isLong = true}}, {"old", {.isLong = true, .isOldTls = true}}, {"near", {}}})
        for (const bool isBare : {false, true})
            addTimed("first-word/" + name + (isBare ? "/bare" : "/varno"), 1, measure, way, isBare)
                ->Repetitions(repetitions);
    addTimed("first-word/key", 5, readKey)->Repetitions(repetitions);
    addTimed("first-word/thread", 1, beginThread)->Repetitions(repetitions);
    for (const auto& [name, place, counter, wanted] : std::initializer_list<
             std::tuple<const char*, std::string, const char*, std::optional<Bound>>>{
             {"Return to the request's arrival, 40 ms away", "far", ":request",
              atMost(1.25 * seconds(oneWay))},
             {"the same, by TLS 1.2", "old", ":request", atMost(1.25 * seconds(oneWay))},
             {"Return to the first painted word, 40 ms away", "far", "",
              atMost(1.25 * seconds(2 * oneWay))},
             {"the same, by TLS 1.2", "old", "", atMost(1.25 * seconds(2 * oneWay))},
             {"Return to the request's arrival, on this machine", "near", ":request", {}},
             {"Return to the first painted word, on this machine", "near", "", {}},
             {"the same, from the request's arrival", "near", ":reply", withinFrame}})
        table.add({.name = name,
                   .ours = "first-word/" + place + "/varno" + counter,
                   .reference = "first-word/" + place + "/bare" + counter,
                   .wanted = wanted});
    table.add({.name = "of it, in times to the service and back",
               .measure = Measure::number,
               .ours = "first-word/far/varno:round trips",
               .reference = "first-word/far/bare:round trips"});
    for (const auto& [name, counter] : std::initializer_list<std::pair<const char*, const char*>>{
             {"of bare libcurl: the name looked up", ":name"},
             {"of bare libcurl: connected, with TLS 1.3", ":connected"},
             {"of bare libcurl: first byte of the reply", ":first byte"}})
        table.add(
            {.name = name, .ours = {}, .reference = std::string("first-word/far/bare") + counter});
    table.add({.name = "of bare libcurl: connected, with TLS 1.2",
               .ours = {},
               .reference = "first-word/old/bare:connected"});
    for (const auto& [name, stage] : std::initializer_list<std::pair<const char*, const char*>>{
             {"of ours: Return handled", "near/varno:asked"},
             {"of ours: the key read, from a key ring", "key"},
             {"of ours: a thread begun", "thread"},
             {"of ours: the first piece laid out", "near/varno:layout"},
             {"of ours: painted", "near/varno:paint"}})
        table.add({.name = name, .ours = std::string("first-word/") + stage});
}

} // namespace varno::bench
