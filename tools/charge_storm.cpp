// Runs a child that edits and exports without pause, and kills it at random moments and at each
// step of a charge. After each restart, the service's ledger must contain one unrefunded charge for
// every render that the batch knows as paid. Other unrefunded charges are allowed only if the
// child still has an entry for them in its journal.
//
//     charge_storm SERVICE_PROGRAM FOLDER KILLS
//         runs children and judges the ledger
//     charge_storm --child FOLDER ADDRESS [STEP TIMES]
//         exports until it is killed; kills itself when it reaches STEP for the TIMES-th time
//     charge_storm --child FOLDER ADDRESS calm
//         only loads the photos and refunds what earlier children left open

#include "canvas/RenderFingerprint.h"
#include "tools/PayingStorm.h"

#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr std::array steps{"opened",   "reserved",  "wrote",   "worked",
                           "recorded", "refunding", "refunded"};

class Child : public PayingChild {
public:
    using PayingChild::PayingChild;

    [[noreturn]] void storm() override
    {
        while (true) {
            for (int edits = below(4); edits > 0; --edits)
                edit();
            exportSomething();
        }
    }

private:
    void follow(const QByteArray& step) override
    {
        if (step == m_stopAt)
            session.activities().stop(Activity::Kind::exporting);
    }

    void exportSomething()
    {
        const bool isSingle = below(2) == 0;
        const QString place = folder.filePath(below(4) == 0 ? u"missing"_s : u"out"_s);
        static constexpr std::array<const char*, 8> stops{"opened", "reserved", "wrote"};
        m_stopAt = stops[std::size_t(below(int(stops.size())))];
        const Batch& batch = session.batch();
        tellPlan(isSingle ? QList<int>{batch.selectedIndex} : session.exports().exportIndices());
        if (isSingle)
            session.exportCurrent(place + u'/' + batch.currentItem()->filename() + u".png"_s);
        else
            session.exportAll(place);
        turnUntil([this] { return !session.isExporting(); });
        say(u"ended %1 %2"_s.arg(int(session.statusLog().current().kind)).arg(session.status()));
    }

    // Prints how many files the coming export writes, and the request id and the renders of its
    // charge.
    void tellPlan(const QList<int>& indices) const
    {
        const SocialFormat format = session.batch().format;
        QList<RenderedOutput> outputs;
        for (const int index : indices) {
            const PublicationItem& item = session.batch().items[index];
            const auto content = photos->digestOf(item.image.path);
            outputs.append({item,
                            {},
                            renderFingerprint({item, content.value_or(QByteArray()),
                                               smallSize(format), designSize(format)}),
                            {}});
        }
        const QList<RenderedOutput> unpaid = unpaidRenderedOutputs(outputs, session.payments());
        QString line = u"plan %1"_s.arg(outputs.size());
        if (!unpaid.isEmpty())
            line += u' ' + creditRequestID(unpaid, u"download"_s);
        for (const RenderedOutput& output : unpaid)
            line +=
                u" %1/%2"_s.arg(output.item.id.toString(QUuid::WithoutBraces), output.fingerprint);
        say(line);
    }

    QByteArray m_stopAt;
};

class Judge : public RenderJudge {
public:
    using RenderJudge::RenderJudge;

    void childDied(bool isByItself)
    {
        countKill(isByItself);
        // Notes the request if the child died after writing all files, but before recording the
        // payment: its charge is refunded although the files exist.
        if (!m_request.isEmpty() && m_written == m_files)
            m_unrecorded.insert(m_request);
        m_request.clear();
    }

    void judge()
    {
        for (const auto& [request, charge] : judgeLedger()) {
            if (!charge.isOpen)
                m_inUsersFavour += int(m_unrecorded.erase(request));
        }
        forgetState();
    }

    int finish() const
    {
        return finishWith(u"%1 exports done, %2 of them free; %3 refunded though the files were "
                          "there"_s.arg(m_exports)
                              .arg(m_freeExports)
                              .arg(m_inUsersFavour));
    }

private:
    void follow(const QStringList& words) override
    {
        if (words[0] == u"plan") {
            m_files = words.value(1).toInt();
            m_written = 0;
            m_request = words.value(2);
            m_isFree = m_request.isEmpty();
            if (!m_request.isEmpty())
                plan(m_request, words.mid(3));
        } else if (words[0] == u"step") {
            m_written += m_step == u"wrote";
            if (m_step == u"recorded")
                m_request.clear();
        } else if (words[0] == u"ended") {
            const bool isDone = words.value(1).toInt() == int(StatusKind::done);
            m_exports += isDone;
            m_freeExports += isDone && m_isFree;
            m_request.clear();
            m_step = u"none"_s;
        }
    }

    // Ids of requests whose files were all written, but whose payment was not recorded.
    std::set<QString> m_unrecorded;
    QString m_request;    // of the export under way
    bool m_isFree = false;
    int m_files = 0, m_written = 0;
    int m_exports = 0, m_freeExports = 0, m_inUsersFavour = 0;
};

}    // namespace

int main(int argc, char** argv)
{
    return payingStormMain<Child, Judge>(argc, argv, steps,
                                         [](const StormService&) { return true; });
}
