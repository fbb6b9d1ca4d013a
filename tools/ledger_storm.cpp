// Lets many clients of one account reserve and refund credits at random, then judges the ledger:
// nothing may be charged twice, nothing that was acknowledged may be missing, and the balance may
// never be negative.
//
//     ledger_storm SERVICE_PROGRAM [--seconds 60] [--clients 32] [--kill]
//
// --kill ends the service without warning at random moments, about five seconds apart, and starts
// it again on the same data each time.

#include "account/AccountRecords.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDateTime>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>
#include <map>
#include <optional>
#include <random>
#include <thread>

#include <httplib.h>
#include <sqlite3.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr int requestIds = 16;
// Credits. Reservations of all request ids at once would cost far more than the balance.
constexpr std::array<qint64, 3> costs{3, 250, 2500};

enum class Move { reserve, refund };

// A request that the service confirmed. `asked` and `known` are the times of the request and of the
// reply, in milliseconds since 1970.
struct Acknowledged {
    Move move;
    QString requestId;
    qint64 cost = 0;
    qint64 asked = 0, known = 0;
};

struct Entry {
    QString kind, requestId;
    qint64 amount = 0, balance = 0;
    qint64 created = 0;
};

class RunningService {
public:
    RunningService(const QString& program, const QString& data) : m_program(program), m_data(data)
    {
    }

    bool start()
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(m_program, {u"--data"_s, m_data});
        if (!m_process.waitForReadyRead(10'000))
            return false;
        const std::scoped_lock lock(m_mutex);
        m_address = m_process.readLine().trimmed().toStdString();
        return true;
    }
    void kill()
    {
        m_process.kill();
        m_process.waitForFinished();
    }
    bool end()
    {
        m_process.terminate();
        return m_process.waitForFinished(10'000) && m_process.exitCode() == 0;
    }
    std::string address() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_address;
    }

private:
    QString m_program, m_data;
    QProcess m_process;
    mutable std::mutex m_mutex;
    std::string m_address;
};

std::string cookieOf(const httplib::Response& reply)
{
    const std::string whole = reply.get_header_value("Set-Cookie");
    return whole.substr(0, whole.find(';'));
}

std::string registered(const RunningService& service)
{
    httplib::Client client(service.address());
    const auto reply = client.Post("/api/auth/register",
                                   R"({"email":"tormenta@ejemplo.es","password":"una-contraseña"})",
                                   "application/json");
    return reply && reply->status == 200 ? cookieOf(*reply) : std::string();
}

qint64 reportedBalance(const RunningService& service, const std::string& cookie)
{
    httplib::Client client(service.address());
    const auto reply = client.Get("/api/auth/me", httplib::Headers{{"Cookie", cookie}});
    const auto summary = reply ? fromWire<AccountSummary>(reply->body) : std::nullopt;
    return summary ? summary->balance : -1;
}

struct Tally {
    QList<Acknowledged> acknowledged;
    std::map<int, int> statuses;    // number of replies, by HTTP status; 0: no answer
};

Tally storm(const RunningService& service, const std::string& cookie, unsigned seed,
            const std::atomic_bool& isOver)
{
    Tally tally;
    std::mt19937 random(seed);
    const auto below = [&](size_t count) { return random() % count; };
    while (!isOver) {
        const Move move = below(2) == 0 ? Move::reserve : Move::refund;
        const CreditOperationRequest request{costs[below(costs.size())],
                                             u"pedido %1"_s.arg(below(requestIds))};
        httplib::Client client(service.address());
        const qint64 asked = QDateTime::currentMSecsSinceEpoch();
        const auto reply = client.Post(move == Move::reserve ? "/api/credits/social-copy/reserve"
                                                             : "/api/credits/social-copy/refund",
                                       httplib::Headers{{"Cookie", cookie}},
                                       toWire(request).toStdString(), "application/json");
        const qint64 known = QDateTime::currentMSecsSinceEpoch();
        ++tally.statuses[reply ? reply->status : 0];
        if (reply && reply->status == 200)
            tally.acknowledged.append({move, request.requestId, request.cost, asked, known});
        if (!reply)
            std::this_thread::sleep_for(20ms);
    }
    return tally;
}

QList<Entry> ledger(const QString& file)
{
    QList<Entry> entries;
    sqlite3* handle = nullptr;
    sqlite3_stmt* rows = nullptr;
    if (sqlite3_open_v2(file.toUtf8().constData(), &handle, SQLITE_OPEN_READONLY, nullptr) ==
            SQLITE_OK &&
        sqlite3_prepare_v2(handle,
                           "SELECT kind, coalesce(request_id, ''), amount, balance, created"
                           " FROM ledger_entry ORDER BY id",
                           -1, &rows, nullptr) == SQLITE_OK) {
        const auto text = [&](int column) {
            return QString::fromUtf8(
                reinterpret_cast<const char*>(sqlite3_column_text(rows, column)));
        };
        while (sqlite3_step(rows) == SQLITE_ROW)
            entries.append({text(0), text(1), sqlite3_column_int(rows, 2),
                            sqlite3_column_int(rows, 3), sqlite3_column_int64(rows, 4)});
    }
    sqlite3_finalize(rows);
    sqlite3_close(handle);
    return entries;
}

class Judge {
public:
    explicit Judge(const QList<Entry>& entries) : m_entries(entries) {}

    int violations() const { return m_violations; }

    void judgeSums(qint64 reported)
    {
        qint64 sum = 0;
        for (const Entry& entry : m_entries) {
            sum += entry.amount;
            expect(sum == entry.balance, "an entry's balance is not the sum so far");
            expect(sum >= 0, "the balance was negative");
        }
        expect(sum == reported, "the reported balance is not the ledger's sum");
    }

    void judgeTurns()
    {
        for (auto& [id, moves] : movesById()) {
            for (qsizetype i = 0; i < moves.size(); ++i) {
                const bool isReserve = moves[i].kind == u"reserve";
                expect(isReserve == (i % 2 == 0), "charged or refunded twice in a row");
                expect(isReserve || (i > 0 && moves[i].amount == -moves[i - 1].amount),
                       "a refund is not what was reserved");
            }
        }
    }

    // Checks that each acknowledged request agrees with the ledger as it was at some moment between
    // the request and the reply.
    void judgeAcknowledged(const QList<Acknowledged>& all)
    {
        const auto byId = movesById();
        for (const Acknowledged& one : all) {
            const auto found = byId.find(one.requestId);
            expect(found != byId.end() && wasSo(found->second, one),
                   "what was acknowledged is not in the ledger");
        }
    }

private:
    static bool wasSo(const QList<Entry>& moves, const Acknowledged& one)
    {
        const QStringView kind = one.move == Move::reserve ? u"reserve" : u"refund";
        for (qsizetype i = 0; i < moves.size(); ++i) {
            const bool endedBefore = i + 1 < moves.size() && moves[i + 1].created < one.asked;
            if (moves[i].kind == kind && std::abs(moves[i].amount) == one.cost &&
                moves[i].created <= one.known && !endedBefore)
                return true;
        }
        return false;
    }

    std::map<QString, QList<Entry>> movesById() const
    {
        std::map<QString, QList<Entry>> moves;
        for (const Entry& entry : m_entries) {
            if (!entry.requestId.isEmpty())
                moves[entry.requestId].append(entry);
        }
        return moves;
    }

    void expect(bool isTrue, const char* otherwise)
    {
        if (!isTrue && ++m_violations <= 20)
            std::fprintf(stderr, "%s\n", otherwise);
    }

    const QList<Entry>& m_entries;
    int m_violations = 0;
};

struct Options {
    QString program;
    int seconds = 60, clients = 32;
    bool kill = false;
};

// Waits until the storm is over and meanwhile kills the service, if the options ask for that.
// Returns the number of kills; nothing if the service did not start again.
std::optional<int> waitOut(const Options& options, RunningService& service)
{
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::seconds(options.seconds);
    if (!options.kill) {
        std::this_thread::sleep_until(end);
        return 0;
    }
    std::mt19937 random(std::random_device{}());
    const int apart = std::min(5000, options.seconds * 1000 / 3);    // ms
    std::uniform_int_distribution<int> pause(apart / 2, apart * 3 / 2);
    int kills = 0;
    while (true) {
        const auto next = Clock::now() + std::chrono::milliseconds(pause(random));
        std::this_thread::sleep_until(std::min(next, end));
        if (next >= end)
            return kills;
        service.kill();
        ++kills;
        if (!service.start())
            return std::nullopt;
    }
}

int run(const Options& options)
{
    const QTemporaryDir data;
    RunningService service(options.program, data.path());
    const std::string cookie = service.start() ? registered(service) : std::string();
    if (cookie.empty()) {
        std::fputs("the service does not answer\n", stderr);
        return 1;
    }
    std::atomic_bool isOver = false;
    std::vector<Tally> tallies(size_t(options.clients));
    std::vector<std::thread> clients;
    for (unsigned i = 0; i < unsigned(options.clients); ++i)
        clients.emplace_back([&, i] { tallies[i] = storm(service, cookie, i, isOver); });
    const std::optional<int> kills = waitOut(options, service);
    isOver = true;
    for (std::thread& client : clients)
        client.join();
    const qint64 reported = kills ? reportedBalance(service, cookie) : -1;
    const bool endedWell = service.end();

    const QList<Entry> entries = ledger(data.filePath(u"servicio.sqlite"_s));
    Judge judge(entries);
    judge.judgeSums(reported);
    judge.judgeTurns();
    qsizetype acknowledged = 0;
    std::map<int, int> statuses;
    for (const Tally& tally : tallies) {
        judge.judgeAcknowledged(tally.acknowledged);
        acknowledged += tally.acknowledged.size();
        for (const auto& [status, count] : tally.statuses)
            statuses[status] += count;
    }
    int all = 0;
    for (const auto& [status, count] : statuses) {
        std::printf(status ? "status %d: %d\n" : "no answer (%d): %d\n", status, count);
        all += count;
    }
    std::printf("%d clients, %d s: %.0f requests/s, %lld acknowledged, %lld entries, balance %lld, "
                "%d kills, %d violations%s\n",
                options.clients, options.seconds, double(all) / options.seconds,
                qlonglong(acknowledged), qlonglong(entries.size()), qlonglong(reported),
                kills.value_or(-1), judge.violations(),
                endedWell ? "" : ", the service did not end well");
    return judge.violations() == 0 && kills && endedWell && acknowledged > 0 ? 0 : 1;
}

}    // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addOptions({{u"seconds"_s, {}, u"N"_s, u"60"_s},
                       {u"clients"_s, {}, u"N"_s, u"32"_s},
                       {u"kill"_s, {}}});
    parser.process(application);
    const Options options{parser.positionalArguments().value(0), parser.value(u"seconds"_s).toInt(),
                          parser.value(u"clients"_s).toInt(), parser.isSet(u"kill"_s)};
    if (options.program.isEmpty() || options.seconds < 1 || options.clients < 1) {
        std::fputs("Usage: ledger_storm SERVICE_PROGRAM [--seconds N] [--clients N] [--kill]\n",
                   stderr);
        return 2;
    }
    return run(options);
}
