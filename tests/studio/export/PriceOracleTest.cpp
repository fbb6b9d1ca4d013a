#include "canvas/ExportCanvasRenderer.h"
#include "tests/studio/PayingStudio.h"

#include <QCryptographicHash>
#include <QRandomGenerator>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

// Random edits and exports, judged by an oracle that draws the batch for every price. The oracle
// remembers the paid pictures and knows nothing of fingerprints.

namespace {

// The environment variable MOLTIVA_PRICE_SEQUENCES replaces `sequenceCount`.
constexpr int sequenceCount = 12, rounds = 12;

class PriceOracle {
public:
    qint64 price(const Batch& batch, const QList<int>& indices) const
    {
        int unpaid = 0;
        for (const int index : indices) {
            const PublicationItem& item = batch.items[index];
            unpaid += !m_paid.value(item.id).contains(picture(item, batch.format));
        }
        return exportCreditCost * unpaid;
    }
    void pay(const Batch& batch, const QList<int>& indices)
    {
        for (const int index : indices) {
            const PublicationItem& item = batch.items[index];
            m_paid[item.id].insert(picture(item, batch.format));
        }
    }

private:
    static QByteArray picture(const PublicationItem& item, SocialFormat format)
    {
        const auto drawn =
            ExportCanvasRenderer::bitmap(item, PayingStudio::smallSize(format), designSize(format));
        EXPECT_TRUE(drawn);
        const QImage pixels = drawn->convertToFormat(QImage::Format_ARGB32_Premultiplied);
        return QCryptographicHash::hash(
                   {reinterpret_cast<const char*>(pixels.constBits()), pixels.sizeInBytes()},
                   QCryptographicHash::Sha256) +
               QByteArray::number(pixels.width());
    }

    QHash<QUuid, QSet<QByteArray>> m_paid;
};

// Makes random edits, many without a visible effect. The values are far apart: in exports as small
// as these, close values often give equal pixels, which only drawing can show.
class RandomEdits {
public:
    RandomEdits(StudioSession& session, unsigned seed) : m_session(session), m_random(seed) {}

    int below(int bound) { return m_random.bounded(bound); }
    bool isCovered() const { return m_isCovered; }
    const std::string& log() const { return m_log; }

    void edit()
    {
        const int kind = below(12);
        m_log += ' ' + std::to_string(kind);
        if (kind < 4)
            return editText();
        if (kind < 6)
            return editShape();
        if (kind < 7)
            return m_session.setPlacement(placement());
        if (kind < 8)
            return m_session.setFormat(one<SocialFormat>(
                {SocialFormat::carouselPortrait, SocialFormat::square, SocialFormat::storyReel}));
        if (kind < 9)
            return select();
        if (kind < 10)
            return editUnseen();
        if (below(3) > 0)
            return m_session.undo();
        m_session.redo();
    }

    // Adds an opaque shape over the whole canvas. No other edit adds a shape that hides what is
    // below.
    void cover()
    {
        PublicationItem item = *m_session.batch().currentItem();
        ShapeLayer all(QUuid::createUuid(), ShapeKind::rectangle, {-0.1, -0.1, 1.2, 1.2});
        all.cornerRadius = 0;
        item.shapeLayers.append(all);
        m_session.setCurrentItem(item);
        m_isCovered = true;
        m_log += " cover";
    }

private:
    template <typename T>
    T one(std::initializer_list<T> values)
    {
        return values.begin()[below(int(values.size()))];
    }
    CodableColor color()
    {
        return one<CodableColor>({codableWhite, {1, 0.2, 0.1}, {0.1, 0.9, 0.3}});
    }

    void editText()
    {
        TextLayer layer = one({m_session.batch().currentItem()->layers[0],
                               m_session.batch().currentItem()->layers[1],
                               m_session.batch().currentItem()->layers[2],
                               m_session.batch().currentItem()->layers[3]});
        const int kind = below(14);
        m_log += '.' + std::to_string(kind);
        switch (kind) {
        case 0:
        case 1:
            return m_session.setText(
                layer.slot, one<QString>({u""_s, u"  "_s, u"\n"_s, u"\u00a0"_s, u"Rebajas"_s,
                                          u"Sol y mar"_s, u"Sol y mar "_s, u"Otoño en los Picos"_s,
                                          QString::number(below(1000))}));
        case 2:
            layer.fontScale = one({0.4, 1.0, 1.6, 3.0, 6.0, 12.0});
            break;
        case 3:
            layer.alignment = one({LayerTextAlignment::leading, LayerTextAlignment::center,
                                   LayerTextAlignment::trailing, LayerTextAlignment::justified});
            break;
        case 4:
            layer.hasBox = !layer.hasBox;
            break;
        case 5:
            layer.shadowDistance = one({0.0, 40.0, 90.0});
            break;
        case 6:
            layer.shadowRadius = one({0.0, 20.0, 60.0});
            break;
        case 7:
            layer.shadowOpacity = one({0.0, 0.5, 1.0});
            break;
        case 8:
            layer.backgroundOpacity = one({0.0, 0.3, 0.6});
            break;
        case 9:
            layer.cornerRadius = one({0.0, 40.0, 3000.0, 5000.0});
            break;
        case 10:
            layer.foreground = color();
            break;
        case 11:
            layer.frame.x = one({0.1, 0.3, 3.0, -4.0});
            break;
        case 12:
            layer.background = layer.shadowColor = color();
            break;
        default:
            layer.isVisible = !layer.isVisible;
        }
        m_session.editLayer(layer, LayerEdits::Copied(below(3)));
    }

    void editShape()
    {
        const QList<ShapeLayer> shapes = m_session.batch().currentItem()->shapeLayers;
        if (shapes.isEmpty() || below(4) == 0)
            return addShape();
        ShapeLayer shape = shapes[below(int(shapes.size()))];
        const int kind = below(8);
        m_log += '.' + std::to_string(kind);
        // The covering shape is never changed, only removed.
        if (kind == 0 || shape.frame.width > 1)
            return m_session.deleteShape(shape.id);
        switch (kind) {
        case 1:
            shape.frame.x = one({0.1, 0.4, 2.0, -3.0});
            break;
        case 2:
            shape.fillOpacity = one({0.0, 0.3, 0.6});
            break;
        case 3:
            shape.fill = color();
            break;
        case 4:
            shape.strokeWidth = one({0.0, 20.0, 60.0});
            break;
        case 5:
            shape.stroke = color();
            break;
        case 6:
            shape.strokeOpacity = one({0.0, 0.3, 0.6});
            break;
        default:
            shape.cornerRadius = one({0.0, 60.0, 3000.0});
        }
        m_session.editShape(shape);
    }

    void addShape()
    {
        m_session.addShape(
            one({ShapeKind::rectangle, ShapeKind::circle, ShapeKind::triangle, ShapeKind::line}));
        ShapeLayer shape = m_session.batch().currentItem()->shapeLayers.last();
        shape.fill = color();
        shape.fillOpacity = 0.6;
        m_session.editShape(shape);
    }

    // Changes properties that affect no pixel.
    void editUnseen()
    {
        PublicationItem item = *m_session.batch().currentItem();
        for (TextLayer& layer : item.layers) {
            if (!layer.isVisible)
                layer.fontScale = one({1.0, 2.0});
            if (!layer.isVisible || !layer.hasBox)
                layer.background = layer.shadowColor = color();
            if (layer.shadowOpacity == 0 || layer.shadowRadius == 0)
                layer.shadowDistance = one({0.0, 40.0});
            if (layer.text.trimmed().isEmpty())
                layer.foreground = color();
            if (layer.cornerRadius >= 3000)
                layer.cornerRadius = one({3000.0, 5000.0});
        }
        for (ShapeLayer& shape : item.shapeLayers) {
            if (shape.kind != ShapeKind::rectangle)
                shape.cornerRadius = one({0.0, 60.0});
            if (shape.strokeWidth == 0 || shape.strokeOpacity == 0)
                shape.stroke = color();
            if (shape.fillOpacity == 0 || shape.kind == ShapeKind::line)
                shape.fill = color();
            if (std::abs(shape.frame.x) > 1)
                shape.frame.x = one({2.0, -3.0});
        }
        m_session.setCurrentItem(item);
    }

    // StudioSession::setPlacement() limits most of these offsets to those at which the photo still
    // fills the canvas.
    ImagePlacement placement()
    {
        return {.mode = one({ImageFitMode::fill, ImageFitMode::fit}),
                .zoom = one({0.0, 1.0, 1.5, 9.0}),
                .offset = {one({0.0, 0.2, 5.0}), one({0.0, -0.2, -5.0})}};
    }

    void select()
    {
        switch (below(4)) {
        case 0:
            return m_session.selectAll();
        case 1:
            return m_session.selectItem(below(3), Qt::ControlModifier);
        case 2:
            m_session.copyStyle();
            m_session.selectItem(below(3), Qt::ShiftModifier);
            return m_session.pasteStyle();
        default:
            m_session.selectItem(below(3), Qt::KeyboardModifiers());
        }
    }

    StudioSession& m_session;
    QRandomGenerator m_random;
    bool m_isCovered = false;
    std::string m_log;
};

// Gives boxes and shadows colors unlike the black canvas beside the photo, and corners as round as
// possible: any larger radius draws the same picture.
void colorAll(StudioSession& session)
{
    session.selectAll();
    const QList<TextLayer> layers = session.batch().currentItem()->layers;
    for (TextLayer layer : layers) {
        layer.background = {0.1, 0.9, 0.3};
        layer.shadowColor = {1, 0.2, 0.1};
        layer.backgroundOpacity = layer.shadowOpacity = 0.6;
        layer.cornerRadius = 3000;
        session.editLayer(layer);
    }
}

class PriceOracleTest : public ::testing::Test {
protected:
    // Buys enough credits for the whole test.
    void topUp()
    {
        {
            QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"purchase"_s);
            database.setDatabaseName(world.service.folder().filePath(u"servicio.sqlite"_s));
            EXPECT_TRUE(database.open());
            QSqlQuery purchase(database);
            EXPECT_TRUE(purchase.exec(
                u"INSERT INTO ledger_entry (account, kind, amount, balance, note, created)"
                " SELECT account, 'purchase', 100000000, balance + 100000000, '', created"
                " FROM ledger_entry ORDER BY id DESC LIMIT 1"_s));
        }
        QSqlDatabase::removeDatabase(u"purchase"_s);
    }

    void runSequence(unsigned seed)
    {
        // Colors the layers in a run of its own, because a new run cannot undo the edits of an
        // earlier one.
        {
            PayingStudio first(world);
            first.load(photos);
            colorAll(first.session);
        }
        PayingStudio studio(world);
        // The sign-in of an earlier sequence may still be valid.
        if (!awaited(studio.account.refresh()) || !studio.account.isAuthenticated())
            studio.signIn();
        RandomEdits edits(studio.session, seed);
        for (int round = 0; round < rounds && !HasFailure(); ++round) {
            SCOPED_TRACE("sequence " + std::to_string(seed) + edits.log());
            for (int i = edits.below(3); i >= 0; --i)
                edits.edit();
            if (edits.below(24) == 0)
                edits.cover();
            SCOPED_TRACE("then" + edits.log());
            judgePrices(studio, edits.isCovered());
            if (edits.below(2) == 0)
                judgeExport(studio, edits.below(3) == 0);
        }
    }

private:
    void judgePrices(PayingStudio& studio, bool isCovered)
    {
        const Batch& batch = studio.session.batch();
        const auto [current, all] = studio.prices();
        const int drawnCurrent = oracle.price(batch, {batch.selectedIndex});
        const int drawnAll = oracle.price(batch, studio.session.exports().exportIndices());
        EXPECT_GE(current, drawnCurrent);
        EXPECT_GE(all, drawnAll);
        if (!isCovered) {
            EXPECT_EQ(current, drawnCurrent);
            EXPECT_EQ(all, drawnAll);
        }
    }

    void judgeExport(PayingStudio& studio, bool isSingle)
    {
        const Batch batch = studio.session.batch();
        const QList<int> indices =
            isSingle ? QList<int>{batch.selectedIndex} : studio.session.exports().exportIndices();
        const qint64 price = oracle.price(batch, indices), before = world.balance();
        const QString told = isSingle ? studio.exportCurrent() : studio.exportAll();
        EXPECT_TRUE(told.startsWith(u"Exportad"_s)) << told.toStdString();
        EXPECT_EQ(before - world.balance(), price) << told.toStdString();
        oracle.pay(batch, indices);
    }

    PayingWorld world;
    const QList<QUrl> photos{world.photo(u"a.png"_s, Qt::blue), world.photo(u"b.png"_s, Qt::red),
                             world.photo(u"c.png"_s, Qt::darkGreen)};
    PriceOracle oracle;
};

}    // namespace

TEST_F(PriceOracleTest, PricesAreThoseOfThePixels)
{
    topUp();
    const int wanted = qEnvironmentVariableIntValue("MOLTIVA_PRICE_SEQUENCES");
    for (int seed = 0; seed < (wanted > 0 ? wanted : sequenceCount) && !HasFailure(); ++seed)
        runSequence(unsigned(seed));
}
