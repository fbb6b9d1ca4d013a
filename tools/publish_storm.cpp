// Runs a child that edits, and publishes and exports the same images at once, without pause. Kills
// it at random moments and at each step of a publication. After each restart, the ledger is judged
// as by charge_storm. What is known as published must be paid for and on the service; what the
// service has published must be known, if only as a doubt.
//
//     publish_storm SERVICE_PROGRAM FOLDER KILLS
//         runs children and judges the ledger
//     publish_storm --child FOLDER ADDRESS [STEP TIMES]
//         publishes until it is killed; kills itself when it reaches STEP for the TIMES-th time
//     publish_storm --child FOLDER ADDRESS calm
//         only loads the photos and refunds what earlier children left open

#include "tools/PayingStorm.h"

#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr std::array steps{"opened", "reserved", "noted",     "sent",
                           "worked", "recorded", "refunding", "refunded"};

class Child : public PayingChild {
public:
    Child(const QString& folderPath, const QUrl& address) : PayingChild(folderPath, address)
    {
        session.setPublishService(api);
    }

    [[noreturn]] void storm() override
    {
        session.publish().openPublishWindow();
        turnUntil([this] { return session.publish().socialNetworks().size() == 3; });
        while (true) {
            for (int edits = below(4); edits > 0; --edits)
                edit();
            publishAndExport();
        }
    }

private:
    void follow(const QByteArray& step) override
    {
        if (step == "opened")
            tellPlans();
        if (step != m_stopAt)
            return;
        session.activities().stop(below(2) == 0 ? Activity::Kind::exporting
                                                : Activity::Kind::publishing);
    }

    // Prints the request id and the renders of each charge under way.
    void tellPlans() const
    {
        for (const QString& key : entries()) {
            const auto entry = entryAt(key, preferences);
            if (!entry)
                continue;
            QString line = u"plan "_s + entry->requestId;
            for (QString render : entry->covers)
                line += u' ' + render.replace(u' ', u'/');
            say(line);
        }
    }

    void publishAndExport()
    {
        static constexpr std::array<const char*, 8> stops{"opened", "reserved", "noted"};
        m_stopAt = stops[std::size_t(below(int(stops.size())))];
        StudioPublish& publish = session.publish();
        const auto network = allCases<SocialPublishNetwork>()[std::size_t(below(3))];
        publish.choose(network);
        publish.setPublishCaption(QString::number(below(3)));
        const bool isExportFirst = below(2) == 0;
        if (isExportFirst)
            exportAll();
        publish.preparePublish(network, SocialPublishPlacement(below(2)));
        if (!isExportFirst)
            exportAll();
        const auto areDone = [&] { return !publish.isPublishing() && !session.isExporting(); };
        turnUntil(areDone);
        if (publish.isConfirming()) {
            publish.preparePublish(network, publish.placement());
            turnUntil(areDone);
        }
        say(u"ended %1"_s.arg(publish.publishedPost().has_value()));
    }

    void exportAll()
    {
        session.exportAll(folder.filePath(below(4) == 0 ? u"missing"_s : u"out"_s));
    }

    void tellMore() override
    {
        for (const PublishRecord& record : session.publish().history()) {
            QString line =
                u"post %1 %2"_s.arg(record.requestId, QString::number(int(record.state)));
            for (const QString& render : record.renders)
                line += u' ' + render;
            say(line);
        }
    }

    QByteArray m_stopAt;
};

class Judge : public RenderJudge {
public:
    using RenderJudge::RenderJudge;

    void childDied(bool isByItself)
    {
        countKill(isByItself);
        m_records.clear();
    }

    void judge()
    {
        judgeLedger();
        std::set<QString> paid;    // fingerprints
        for (const QString& render : m_paid)
            paid.insert(render.section(u'/', 1));
        std::set<QString> posts;    // their request ids
        for (const QByteArrayList& row : rowsOf("SELECT request_id FROM social_post"))
            posts.insert(QString::fromUtf8(row[0]));
        m_doubts = 0;
        for (const auto& [request, record] : m_records) {
            m_doubts += record.state == PublishRecord::State::unknown;
            if (record.state == PublishRecord::State::sending)
                fail("still being sent by a run that has ended", request);
            if (record.state != PublishRecord::State::published)
                continue;
            if (!posts.contains(request))
                fail("known as published, but it is not", request);
            for (const QString& render : record.renders) {
                if (!paid.contains(render))
                    fail("published, but its render is not paid", render);
            }
        }
        // The oldest records go when there are many: only new posts must have one.
        for (const QString& request : posts) {
            if (!m_posts.contains(request) && !m_records.contains(request))
                fail("published, but nobody knows", request);
        }
        m_posts = posts;
        m_records.clear();
        forgetState();
    }

    int finish() const
    {
        return finishWith(
            u"%1 publications ended well, %2 posts on the service, %3 in doubt"_s.arg(m_ended)
                .arg(m_posts.size())
                .arg(m_doubts));
    }

private:
    void follow(const QStringList& words) override
    {
        if (words[0] == u"plan")
            plan(words.value(1), words.mid(2));
        else if (words[0] == u"post")
            m_records[words.value(1)] = {PublishRecord::State(words.value(2).toInt()),
                                         words.mid(3)};
        else if (words[0] == u"ended")
            m_ended += words.value(1).toInt();
    }

    struct Record {
        PublishRecord::State state = PublishRecord::State::sending;
        QStringList renders;
    };
    std::map<QString, Record> m_records;    // by request id, reported by the running child
    std::set<QString> m_posts;              // request ids of the posts at the last judgement
    int m_ended = 0, m_doubts = 0;
};

}    // namespace

int main(int argc, char** argv)
{
    return payingStormMain<Child, Judge>(argc, argv, steps, [](const StormService& service) {
        return connectNetworks(service.ledgerFile());
    });
}
