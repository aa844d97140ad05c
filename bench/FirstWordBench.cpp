#include "bench/Benches.h"
#include "core/AppViewModel.h"
#include "demo/SlowRelay.h"
#include "demo/StandInService.h"
#include "kit/Theme.h"
#include "platform/fake/FakePreferencesStore.h"
#include "platform/linux/CurlHttpSession.h"
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

/// A service with its TLS, and the way there.
struct Line {
    explicit Line(bool isLong)
        : relay(isLong ? std::make_unique<SlowRelay>(service->claudeEndpoint(), oneWay) : nullptr)
    {
        service->setScript({.pieceLength = 40, .pauseAfterFirstEvent = 100ms});
    }

    std::unique_ptr<StandInService> service = std::get<0>(StandInService::start({.tls = true}));
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
    }

    /// Types a query, presses Return, and waits until the first word is painted.
    Span ask()
    {
        m_model.prepareSearch();
        QTest::qWait(typing);
        const auto begin = Clock::now();
        m_model.search(u"why did the empire of this name fall"_s); // an article with its contents
        turnUntil([this] { return m_isPainted; });
        return {begin, Clock::now()};
    }

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        m_isPainted |= event->type() == QEvent::Paint && m_page.textLength() > 0;
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
    CurlHttpSession m_session;
    BothClients m_clients;
    QTemporaryDir m_folder;
    FakePreferencesStore m_preferences;
    HistoryStore m_history{m_folder.filePath(u"history.json"_s)};
    AppViewModel m_model{{m_preferences, m_history, m_clients.claude, m_clients.gemini}};
    EntryView m_screen{m_model};
    MarkdownContentView& m_page = *m_screen.findChild<MarkdownContentView*>();
};

/// libcurl as it comes: sends `request` again, and waits for the first piece of the entry.
Span askBare(const Line& line, const ReceivedRequest& request)
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
    return {begin, Clock::now()};
}

void measure(benchmark::State& state, bool isLong, bool isBare)
{
    for ([[maybe_unused]] auto iteration : state) {
        Line line(isLong);
        Span span = Program(line).ask();
        if (isBare) {
            const QList<ReceivedRequest> all = line.service->requests();
            const auto request = std::find_if(all.begin(), all.end(), isForEntry);
            if (request != all.end())
                span = askBare(line, *request);
        }
        const auto arrival = line.arrival.load();
        if (arrival < span.begin)
            state.SkipWithError("there was no request");
        state.SetIterationTime(seconds(span.end - span.begin));
        state.counters["request"] = seconds(arrival - span.begin);
        state.counters["reply"] = seconds(span.end - arrival);
    }
}

} // namespace

void addFirstWord(Table& table)
{
    for (const bool isLong : {true, false}) {
        const std::string name = isLong ? "first-word/far" : "first-word/near";
        for (const bool isBare : {false, true})
            addTimed(name + (isBare ? "/bare" : "/varno"), 1, measure, isLong, isBare)
                ->Repetitions(repetitions);
    }
    for (const auto& [name, place, counter, wanted] : std::initializer_list<
             std::tuple<const char*, std::string, const char*, std::optional<Bound>>>{
             {"Return to the request's arrival, 40 ms away", "far", ":request",
              atMost(1.25 * seconds(oneWay))},
             {"Return to the first painted word, 40 ms away", "far", "",
              atMost(1.25 * seconds(2 * oneWay))},
             {"Return to the request's arrival, on this machine", "near", ":request", {}},
             {"Return to the first painted word, on this machine", "near", "", {}},
             {"the same, from the request's arrival", "near", ":reply", withinFrame}})
        table.add({.name = name,
                   .ours = "first-word/" + place + "/varno" + counter,
                   .reference = "first-word/" + place + "/bare" + counter,
                   .wanted = wanted});
}

} // namespace varno::bench
