#include "tests/studio/copy/CopyStudio.h"

#include <QRandomGenerator>

// Random sequences of what a user does during runs, against a model of what should be there.

using namespace Qt::StringLiterals;

namespace {

struct ModelItem {
    QUuid id;
    CopyTexts texts;
    QStringList analysis;    // of the four slots
    bool isCaptionOwn = false;
    double place = 0;    // of the title
    bool operator==(const ModelItem&) const = default;
};
using ModelBatch = QList<ModelItem>;

struct ModelResult {
    QUuid item;
    CopyTexts asked;
    GeneratedCopy copy;
    bool isAnswer = true;
};

ModelItem modelOf(const PublicationItem& item)
{
    ModelItem model;
    model.id = item.id;
    model.texts = textsOf(item);
    for (const TextLayer& layer : item.layers)
        model.analysis.append(item.analysis.text(layer.slot));
    model.isCaptionOwn = item.isCaptionOwn;
    model.place = item.layers[0].frame.x;
    return model;
}

class CopyModel {
public:
    ModelBatch batch, before;    // `before`: from before the gesture under way
    QList<ModelBatch> undoable, redoable;
    QList<ModelResult> queue, waiting;
    bool isRunning = false, isWritten = false, isDragging = false, isRunOnTop = false;
    int written = 0, kept = 0, missingInRow = 0;

    ModelItem* item(QUuid id)
    {
        const auto found = std::ranges::find(batch, id, &ModelItem::id);
        return found == batch.end() ? nullptr : &*found;
    }
    void record(const ModelBatch& earlier)
    {
        if (earlier == batch)
            return;
        push(undoable, earlier);
        redoable.clear();
        isRunOnTop = false;
    }
    void undo()
    {
        if (undoable.isEmpty())
            return;
        push(redoable, batch);
        batch = undoable.takeLast();
        isRunOnTop = false;
    }
    void redo()
    {
        if (redoable.isEmpty())
            return;
        push(undoable, batch);
        batch = redoable.takeLast();
        isRunOnTop = false;
    }
    void settle()
    {
        const bool isHindered = isDragging || (!redoable.isEmpty() && !isWritten);
        if (!isRunning || (isHindered && !waiting.isEmpty()))
            return;
        const ModelBatch earlier = batch;
        QList<ModelResult> absent;
        for (const ModelResult& result : std::as_const(waiting)) {
            if (ModelItem* const target = item(result.item))
                apply(*target, result);
            else
                absent.append(result);
        }
        waiting = absent;
        if (batch != earlier) {
            if (!isRunOnTop)
                push(undoable, earlier);
            isRunOnTop = true;
            redoable.clear();
        }
        if (isWritten) {
            waiting.clear();
            isRunning = false;
        }
    }

private:
    static void push(QList<ModelBatch>& stack, const ModelBatch& state)
    {
        stack.append(state);
        if (stack.size() > 20)
            stack.removeFirst();
    }
    void apply(ModelItem& target, const ModelResult& result)
    {
        const auto isKept = [&](const QString& now, const QString& asked, const QString& text) {
            const bool isEdited = now != asked && now != text;
            kept += isEdited;
            return isEdited;
        };
        const GeneratedCopy& copy = result.copy;
        CopyTexts& texts = target.texts;
        if (!isKept(texts.title, result.asked.title, copy.title))
            texts.title = copy.title;
        if (!isKept(texts.subtitle, result.asked.subtitle, copy.subtitle))
            texts.subtitle = copy.subtitle;
        if (!isKept(texts.tagline, result.asked.tagline, copy.tagline))
            texts.tagline = copy.tagline;
        if (!isKept(texts.callToAction, result.asked.callToAction, copy.callToAction))
            texts.callToAction = copy.callToAction;
        if (!isKept(texts.caption, result.asked.caption, copy.publicationCaption)) {
            texts.caption = copy.publicationCaption;
            target.isCaptionOwn = false;
        }
        target.analysis = {copy.title, copy.subtitle, copy.tagline, copy.callToAction};
        written += result.isAnswer;
    }
};

class Sequence : protected CopyStudio {
public:
    explicit Sequence(quint32 seed) : m_random(seed)
    {
        QObject::connect(&session.copy(), &StudioCopy::ended, &session,
                         [this](const CopyOutcome& outcome) { m_outcome = outcome; });
        load(names());
        follow();
    }

    void run(int steps)
    {
        for (int step = 0; step < steps && !::testing::Test::HasFailure(); ++step)
            act(step);
        if (model.isDragging)
            drop();
        while (model.isRunning && !::testing::Test::HasFailure())
            answerNext();
        compare("the end");
        for (int step = 0; session.canUndo() && !::testing::Test::HasFailure(); ++step) {
            undo();
            compare("undoing");
        }
        EXPECT_TRUE(model.undoable.isEmpty() || ::testing::Test::HasFailure());
    }

private:
    int below(int bound) { return int(m_random.bounded(bound)); }
    QStringList names()
    {
        static int count = 0;
        QStringList all;
        for (int i = 0, images = 2 + below(4); i < images; ++i)
            all.append(u"f%1"_s.arg(++count % 40));
        all.removeDuplicates();
        return all;
    }
    // Takes the session's batch as the model's: nothing is generated yet.
    void follow()
    {
        model = {};
        for (const PublicationItem& item : session.batch().items)
            model.batch.append(modelOf(item));
        model.undoable.append(ModelBatch());    // from before the import
    }

    void act(int step)
    {
        const int choice = below(100);
        const char* what = "";
        if (choice < 30) {
            what = "answering";
            if (model.isRunning && !model.isWritten)
                answerNext();
        } else if (choice < 45) {
            what = "typing";
            if (!model.isDragging)
                type();
        } else if (choice < 52) {
            what = "removing";
            if (!model.isDragging)
                remove();
        } else if (choice < 62) {
            what = "undoing";
            if (!model.isDragging)
                undo();
        } else if (choice < 70) {
            what = "redoing";
            if (!model.isDragging)
                redo();
        } else if (choice < 78) {
            what = "dragging";
            model.isDragging ? drop() : drag();
        } else if (choice < 94) {
            what = "generating";
            generate();
        } else if (choice < 97) {
            what = "cancelling";
            cancel();
        } else {
            what = "importing";
            if (!model.isDragging)
                import();
        }
        rest();
        model.settle();
        compare(what);
        EXPECT_FALSE(::testing::Test::HasFailure()) << "in step " << step << ", " << what;
    }

    void type()
    {
        if (model.batch.isEmpty())
            return;
        const int index = below(int(model.batch.size()));
        const ModelBatch before = model.batch;
        const QString words = QString::number(m_random.generate() % 50);
        ModelItem& item = model.batch[index];
        session.selectSingleIndex(index);
        switch (below(3)) {
        case 0:
            item.texts.title = words;
            session.setText(CopySlot::title, words);
            break;
        case 1:
            item.texts.tagline = words;
            session.setText(CopySlot::tagline, words);
            break;
        default:
            item.isCaptionOwn = item.isCaptionOwn || item.texts.caption != words;
            item.texts.caption = words;
            session.setCaption(words);
        }
        model.record(before);
    }
    void remove()
    {
        if (model.batch.isEmpty())
            return;
        const ModelBatch before = model.batch;
        const QUuid id = model.batch.takeAt(below(int(model.batch.size()))).id;
        session.removeItem(id);
        model.record(before);
    }
    void undo()
    {
        session.undo();
        QGuiApplication::processEvents();
        model.undo();
    }
    void redo()
    {
        session.redo();
        QGuiApplication::processEvents();
        model.redo();
    }
    void drag()
    {
        if (model.batch.isEmpty())
            return;
        const int index = below(int(model.batch.size()));
        session.selectSingleIndex(index);
        model.before = model.batch;
        model.isDragging = true;
        session.beginCanvasHistoryEdit();
        PublicationItem moved = session.batch().items[index];
        moved.layers[0].frame.x = double(below(50)) / 100;
        session.commitCanvasItem(moved);
        model.batch[index].place = moved.layers[0].frame.x;
    }
    void drop()
    {
        session.endCanvasHistoryEdit({});
        model.isDragging = false;
        model.record(model.before);
    }
    void generate()
    {
        if (model.isRunning || model.batch.isEmpty())
            return;
        session.selectSingleIndex(below(int(model.batch.size())));
        for (int i = below(int(model.batch.size())); i > 0; --i)
            session.selectItem(below(int(model.batch.size())), Qt::ControlModifier);
        model.queue.clear();
        m_atTurn = {};
        for (const int index : session.selectedIndicesForBatch())
            model.queue.append({model.batch[index].id, model.batch[index].texts, {}, true});
        model.isRunning = true;
        model.isWritten = false;
        model.isRunOnTop = false;
        model.written = model.kept = model.missingInRow = 0;
        session.copy().analyzeSelected();
    }
    void answerNext()
    {
        ASSERT_TRUE(turnUntil([this] { return writer.isWriting() || isAllWritten(); }));
        ModelResult next;
        bool isThere = false;
        while (!model.queue.isEmpty() && !isThere) {
            next = model.queue.takeFirst();
            isThere = next.item == m_atTurn || model.item(next.item);
        }
        ASSERT_EQ(isThere, writer.isWriting());
        if (isThere) {
            next.isAnswer = below(8) > 0;
            next.copy = next.isAnswer ? ScriptedWriter::copy(QString::number(++m_answers))
                                      : ScriptedWriter::missing();
            model.missingInRow = next.isAnswer ? 0 : model.missingInRow + 1;
            model.waiting.append(next);
            m_atTurn = {};
            if (model.missingInRow == 3)
                model.queue.clear();
            model.settle();
            answer(next.copy);
        }
        noteTurn();
        rest();
        model.settle();
    }
    // Which image the session generates now: it is answered even if it is removed meanwhile.
    void noteTurn()
    {
        turnUntil([this] { return writer.isWriting() || isAllWritten(); });
        if (isAllWritten()) {
            model.isWritten = true;
            return;
        }
        const auto isNext = [this](QUuid item) { return item == m_atTurn || model.item(item); };
        while (!model.queue.isEmpty() && !isNext(model.queue.first().item))
            model.queue.removeFirst();
        m_atTurn = model.queue.isEmpty() ? QUuid() : model.queue.first().item;
    }
    bool isAllWritten() const
    {
        return !session.isAnalyzing() || session.copy().finished() == session.copy().total();
    }
    void cancel()
    {
        if (!model.isRunning || model.isWritten)
            return;
        session.copy().cancel();
        turnUntil([this] { return isAllWritten(); });
        model.queue.clear();
        model.isWritten = true;
    }
    void import()
    {
        const ModelBatch before = model.batch;
        load(names());
        model.batch.clear();
        for (const PublicationItem& item : session.batch().items)
            model.batch.append(modelOf(item));
        model.record(before);
    }

    void compare(const char* what)
    {
        if (model.isRunning && !model.isWritten)
            noteTurn();
        rest();
        model.settle();
        ModelBatch actual;
        for (const PublicationItem& item : session.batch().items)
            actual.append(modelOf(item));
        ASSERT_EQ(actual.size(), model.batch.size()) << what;
        for (qsizetype i = 0; i < actual.size(); ++i) {
            EXPECT_EQ(actual[i].id, model.batch[i].id) << what;
            EXPECT_EQ(actual[i].texts.title.toStdString(), model.batch[i].texts.title.toStdString())
                << what;
            EXPECT_TRUE(actual[i] == model.batch[i]) << what << ", image " << i;
        }
        EXPECT_EQ(session.canUndo(), !model.undoable.isEmpty()) << what;
        EXPECT_EQ(session.canRedo(), !model.redoable.isEmpty()) << what;
        EXPECT_EQ(session.isAnalyzing(), model.isRunning) << what;
        const auto isPresent = [&](const ModelResult& result) { return model.item(result.item); };
        EXPECT_EQ(session.copy().waiting(), std::ranges::count_if(model.waiting, isPresent))
            << what;
        if (!model.isRunning && m_outcome) {
            EXPECT_EQ(m_outcome->written, model.written) << what;
            EXPECT_EQ(m_outcome->kept, model.kept) << what;
            m_outcome.reset();
        }
    }

    QRandomGenerator m_random;
    CopyModel model;
    std::optional<CopyOutcome> m_outcome;
    QUuid m_atTurn;
    int m_answers = 0;
};

}    // namespace

TEST(CopyModel, everyTextIsWhereItBelongsAfterAnySequence)
{
    // The environment variable MOLTIVA_COPY_SEQUENCES replaces their number.
    const int wanted = qEnvironmentVariableIntValue("MOLTIVA_COPY_SEQUENCES");
    for (int seed = 1; seed <= (wanted > 0 ? wanted : 120) && !HasFailure(); ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        Sequence(quint32(seed)).run(40);
    }
}
